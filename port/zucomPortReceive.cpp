// Receiving one whole frame.

#include <zucom/zucomPort.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <stdexcept>

#include <unistd.h>

#include <zucom/zucom.h>

#include "port/zuCall.h"
#include "port/zuClock.h"
#include "port/zuReadWait.h"

namespace
{
// No frame needs more; a reader that sends on without completing one must not fill the memory.
constexpr std::size_t maxWaitingBytes = 65535;
} // namespace

int ZucomPort::receive(uint8_t* buf, size_t size)
{
    const ZuCall call(*this, "int ZucomPort::receive(uint8_t*, size_t)");
    call.trace(163, "Receiving on device: ", devicePath);
    if (buf == nullptr)
    {
        const int code = call.fail(168, ZUCOM_ERR_NULL);
        if (size != 0)
            return code;
    }
    if (size == 0)
        return call.fail(175, ZUCOM_ERR_OUT_OF_RANGE);
    call.trace(185, "Timeout: ", [this] { return timeout_usec / 1000; });
    protQueue.clear();
    if (fileDescriptor <= 0)
        return call.fail(242, ZUCOM_ERR_NOT_CONNECTED);
    try
    {
        return waitForFrame(call, buf, size);
    }
    catch (const std::length_error&)
    {
    }
    catch (const std::bad_alloc&)
    {
    }
    protQueue.clear();
    return call.failSilently(ZUCOM_ERR_MEMORY);
}

inline int ZucomPort::waitForFrame(const ZuCall& call, uint8_t* buf, size_t size)
{
    ZuReadWait wait(timeout_usec);
    while (true)
    {
        const int ready = wait.wait(fileDescriptor);
        if (ready < 0)
            return call.fail(198, ZUCOM_ERR_READ);
        if (ready == 0)
            return timeOut(call);

        const ssize_t count = ::read(fileDescriptor, protQueue.unclearedRoom(size), size);
        if (count == 0)
            return deviceLost(call, ZUCOM_ERR_NOT_CONNECTED);
        if (count < 0)
        {
            if (errno != EINTR && errno != EAGAIN)
                return deviceLost(call, ZUCOM_ERR_READ);
            if (!wait.resume())
                return timeOut(call);
            continue;
        }
        protQueue.addReceived(std::min(static_cast<std::size_t>(count), maxWaitingBytes - protQueue.fill()));
        const int64_t length = protQueue.popProtocol(buf, size);
        if (length != 0)
            return frameReceived(call, buf, length);
        wait.restart();
    }
}

int ZucomPort::timeOut(const ZuCall& call)
{
    return call.fail(211, protQueue.fill() != 0 ? ZUCOM_ERR_PROTOCOL_LENGTH : ZUCOM_ERR_TIMEOUT);
}

int ZucomPort::deviceLost(const ZuCall& call, int code)
{
    call.fail(225, code);
    closePort();
    return code;
}

inline int ZucomPort::frameReceived(const ZuCall& call, const uint8_t* frame, int64_t length)
{
    const std::size_t shown = length > 0 ? static_cast<std::size_t>(length) : 0;
    call.trace(246, "Received protocol: ", ZuDump{frame, shown}, " Length: ", length);
    lastReceiveTime = systemTime_msec();
    return static_cast<int>(length);
}
