// Sending bytes.

#include <zucom/zucomPort.h>

#include <cerrno>
#include <ctime>

#include <unistd.h>

#include <zucom/zucom.h>

#include "port/zuCall.h"
#include "port/zuClock.h"

int ZucomPort::transmit(const uint8_t* data, size_t len)
{
    const ZuCall call(*this, "int ZucomPort::transmit(const uint8_t*, size_t)");
    waitForGap();
    if (data == nullptr && len > 0)
        return call.fail(131, ZUCOM_ERR_NULL);
    call.trace(131, "Transmitting data: ", ZuDump{data, len});
    if (fileDescriptor <= 0)
        return call.fail(149, ZUCOM_ERR_NOT_CONNECTED);
    const ssize_t sent = ::write(fileDescriptor, data, len);
    if (sent < 0)
    {
        const int code = call.fail(139, ZUCOM_ERR_TRANSMIT, " :: System error: ", ZuErrno{errno});
        closePort();
        return code;
    }
    call.trace(143, "Sent ", sent, " Bytes");
    return static_cast<int>(sent);
}

// A wall clock that stepped back makes the difference huge and ends the wait.
void ZucomPort::waitForGap() const
{
    if (txDelayTime == 0)
        return;
    while (systemTime_msec() - lastReceiveTime < txDelayTime)
    {
        timespec rest{0, 1000000};
        while (::nanosleep(&rest, &rest) != 0 && errno == EINTR)
        {
        }
    }
}
