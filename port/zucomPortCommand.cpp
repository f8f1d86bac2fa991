// Port commands: flushing the driver's queues, switching and reading the modem lines.

#include <zucom/zucomPort.h>

#include <algorithm>
#include <cstring>

#include <sys/ioctl.h>
#include <termios.h>

#include <zucom/zucom.h>

#include "port/zuCall.h"
#include "port/zuKeyText.h"

// A command: its name, how it runs, what it acts on, and the tags of the lines that tell of its failures.
struct ZuCommand
{
    using Run = int(const ZuCommand&, ZucomPort&, const ZuCall&, char* value);

    const char* name;
    Run* run;
    int target;   // queue of the driver, or bit of the modem line
    int code;     // of a refusal by the device
    int failTag;  // line of a refusal; SET: when raising
    int lowerTag; // SET: line of a refusal when lowering
    int rs485Tag; // SET: line of a refusal because the driver switches the lines

    static int flush(const ZuCommand& command, ZucomPort& port, const ZuCall& call, char*)
    {
        if (::tcflush(port.fileDescriptor, command.target) != 0)
            return call.fail(command.failTag, command.code);
        return ZUCOM_OK;
    }

    static int setLine(const ZuCommand& command, ZucomPort& port, const ZuCall& call, char* value)
    {
        if (port.opMode == "RS485")
            return call.failWith(command.rs485Tag, command.code, "Not available in RS485 mode");
        const bool raise = ZuKeyText(value).upper() == "ON";
        const int bits = command.target;
        if (::ioctl(port.fileDescriptor, raise ? TIOCMBIS : TIOCMBIC, &bits) != 0)
            return call.fail(raise ? command.failTag : command.lowerTag, command.code);
        return ZUCOM_OK;
    }

    static int getLine(const ZuCommand& command, ZucomPort& port, const ZuCall& call, char* value)
    {
        int status = 0;
        if (::ioctl(port.fileDescriptor, TIOCMGET, &status) != 0)
            return call.fail(command.failTag, command.code);
        std::strcpy(value, (status & command.target) != 0 ? "ON" : "OFF"); // NOLINT: the caller's buffer holds 4 bytes
        return ZUCOM_OK;
    }
};

namespace
{
constexpr ZuCommand commands[] = {
    {"FLUSHINQ", ZuCommand::flush, TCIFLUSH, ZUCOM_ERR_FLUSH_INPUT, 292, 0, 0},
    {"FLUSHOUTQ", ZuCommand::flush, TCOFLUSH, ZUCOM_ERR_FLUSH_OUTPUT, 302, 0, 0},
    {"SETDTR", ZuCommand::setLine, TIOCM_DTR, ZUCOM_ERR_CHANGE_PARAMETER, 323, 332, 311},
    {"SETRTS", ZuCommand::setLine, TIOCM_RTS, ZUCOM_ERR_CHANGE_PARAMETER, 356, 365, 343},
    {"GETDTR", ZuCommand::getLine, TIOCM_DTR, ZUCOM_ERR_READ_PARAMETER, 375, 0, 0},
    {"GETRTS", ZuCommand::getLine, TIOCM_RTS, ZUCOM_ERR_READ_PARAMETER, 389, 0, 0},
    {"GETCTS", ZuCommand::getLine, TIOCM_CTS, ZUCOM_ERR_READ_PARAMETER, 403, 0, 0},
    {"GETDCD", ZuCommand::getLine, TIOCM_CAR, ZUCOM_ERR_READ_PARAMETER, 417, 0, 0},
    {"GETDSR", ZuCommand::getLine, TIOCM_DSR, ZUCOM_ERR_READ_PARAMETER, 431, 0, 0},
};
} // namespace

int ZucomPort::doPortCmd(const char* command, char* value)
{
    const ZuCall call(*this, "int ZucomPort::doPortCmd(const char*, char*)");
    call.trace(267, "Executing port command");
    if (command == nullptr || value == nullptr)
        return call.fail(271, ZUCOM_ERR_NULL);
    if (!fitsKey(command) || !fitsKey(value))
        return call.fail(278, ZUCOM_ERR_OUT_OF_RANGE);
    const ZuKeyText name(command);
    call.trace(285, "Command: ", name.upper(), " Value: ", value);

    const auto* found = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const ZuCommand& c) { return name.upper() == c.name; });
    if (found == std::end(commands))
        return call.fail(443, ZUCOM_ERR_UNKNOWN_COMMAND);
    return found->run(*found, *this, call, value);
}
