// Opening and closing the device.

#include <zucom/zucomPort.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <zucom/zucom.h>

#include "port/zuCall.h"

int ZucomPort::openPort()
{
    const ZuCall call(*this, "int ZucomPort::openPort()");
    call.trace(40, "Opening device: devicePath=", devicePath, " busaddress=", busAddress, " opMode=", opMode);
    fileDescriptor = ::open(devicePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fileDescriptor < 0)
        return call.fail(46, ZUCOM_ERR_PORT_OBJECT);
    ::fcntl(fileDescriptor, F_SETFD, FD_CLOEXEC);

    call.trace(49, "Retreivinng current port settings");
    if (::tcgetattr(fileDescriptor, &oldSettings) != 0)
    {
        ::close(fileDescriptor);
        fileDescriptor = -1;
        return call.fail(55, ZUCOM_ERR_PORT_OBJECT);
    }
    return prepareDevice(call);
}

// From here on closing has settings to restore.
int ZucomPort::prepareDevice(const ZuCall& call)
{
    newSettings = {};
    ::fcntl(fileDescriptor, F_SETFL, 0); // opening must not block, reading and writing may
    buildRawSettings(call);

    call.trace(75, "Applying settings");
    if (::tcsetattr(fileDescriptor, TCSANOW, &newSettings) != 0)
    {
        closePort();
        return call.fail(80, ZUCOM_ERR_PORT_OBJECT);
    }
    call.trace(84, "Flushing IO");
    ::tcflush(fileDescriptor, TCIOFLUSH);

    call.trace(86, "Setting exclusive access to device");
    if (::ioctl(fileDescriptor, TIOCEXCL) != 0)
    {
        closePort();
        return call.fail(92, ZUCOM_ERR_PORT_OBJECT);
    }
    if (::ioctl(fileDescriptor, TIOCGRS485, &savedRs485) != 0)
        call.note(97, "RS485 not available");
    lastError = ZUCOM_OK;
    return ZUCOM_OK;
}

void ZucomPort::buildRawSettings(const ZuCall& call)
{
    call.trace(61, "BAUD = ", int{B9600});
    ::cfsetispeed(&newSettings, B9600);
    ::cfsetospeed(&newSettings, B9600);
    newSettings.c_cflag |= CS8 | PARENB;
    call.trace(67, "FRAME = 8E1");
    newSettings.c_iflag |= IGNBRK | INPCK;
    newSettings.c_cc[VMIN] = 1;
    newSettings.c_cc[VTIME] = 0;
}

int ZucomPort::closePort()
{
    const ZuCall call(*this, "int ZucomPort::closePort()");
    call.trace(106, "Closing device: ", devicePath);
    if (::tcsetattr(fileDescriptor, TCSANOW, &oldSettings) != 0)
        call.error(109, "Unable to set old port settings");
    if (::ioctl(fileDescriptor, TIOCSRS485, &savedRs485) != 0)
        call.error(113, "RS485 not available");
    ::close(fileDescriptor);
    fileDescriptor = -1;
    return ZUCOM_OK;
}
