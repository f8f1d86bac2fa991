// Runs every port operation and lets each of its device calls fail in turn, with every error that is plausible for it.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/deviceFaults.h"
#include "tests/support/logCapture.h"
#include "tests/support/ptyReader.h"
#include <gtest/gtest.h>
#include <zucom/zucom.h>

namespace
{

using Calls = std::vector<std::string>;

const Bytes frame = {5, 255, 0x52, 0, 0};
char value[256];

/** What a failing call leads to. */
struct Consequence
{
    std::string call; // beginning of the call
    int nth;          // among the operation's calls that begin so
    int result;       // 0: the failure changes nothing
    std::string line; // the error line, "%s" for the text of the error; empty for none
    bool closes = false;
};

struct Operation
{
    const char* name;
    std::function<int(int handle, const char* path)> run;
    int result;                            // when nothing fails; for opening any handle
    std::vector<Consequence> consequences; // for every call that is not here: the failure changes nothing
};

const std::string change = "ZUCOM: error in change port parameter";
const std::string readParameter = "ZUCOM: error in read port parameter";
const std::string notNew = "ZUCOM: error while creating new port object";
const std::string oldLine = "closePort:109 ERROR :: Unable to set old port settings";
const std::string oldRs485 = "closePort:113 ERROR :: RS485 not available";

int command(int handle, const char* name, const char* text)
{
    std::strcpy(value, text);
    return ZUCOM_DoPortCmd(handle, name, value);
}

Operation commandRow(const char* name, const char* text, const char* call, int result, const std::string& line)
{
    return {name,
            [=](int handle, const char*) { return command(handle, name, text); },
            0,
            {{call, 1, result, "doPortCmd:" + line}}};
}

Operation settingRow(const char* name, const char* text, const char* call, const std::string& line)
{
    return {name,
            [=](int handle, const char*) { return ZUCOM_SetPortPara(handle, name, text); },
            0,
            {{call, 1, ZUCOM_ERR_CHANGE_PARAMETER, "setPortPara:" + line}}};
}

const Operation operations[] = {
    {"open",
     [](int, const char* path) { return ZUCOM_OpenPort(path); },
     0,
     {{"open", 1, ZUCOM_ERR_PORT_OBJECT, "openPort:46 ERROR :: " + notNew, true},
      {"tcgetattr", 1, ZUCOM_ERR_PORT_OBJECT, "openPort:55 ERROR :: " + notNew, true},
      {"tcsetattr", 1, ZUCOM_ERR_PORT_OBJECT, "openPort:80 ERROR :: " + notNew, true},
      {"ioctl(fd, TIOCEXCL", 1, ZUCOM_ERR_PORT_OBJECT, "openPort:92 ERROR :: " + notNew, true},
      {"ioctl(fd, TIOCGRS485", 1, 0, "openPort:97 :: RS485 not available"}}},
    {"close",
     [](int handle, const char*) { return ZUCOM_ClosePort(handle); },
     0,
     {{"tcsetattr", 1, 0, oldLine}, {"ioctl(fd, TIOCSRS485", 1, 0, oldRs485}}},
    {"transmit",
     [](int handle, const char*) { return ZUCOM_Transmit(handle, frame.data(), frame.size()); },
     5,
     {{"write", 1, ZUCOM_ERR_TRANSMIT, "transmit:139 ERROR :: ZUCOM: error in transmit process :: System error: %s",
       true}}},
    {"receive",
     [](int handle, const char*)
     {
         uint8_t buffer[16];
         return ZUCOM_Receive(handle, buffer, sizeof buffer);
     },
     5,
     {{"select", 1, ZUCOM_ERR_READ, "receive:198 ERROR :: ZUCOM: error in read process"},
      {"select", 2, ZUCOM_ERR_READ, "receive:198 ERROR :: ZUCOM: error in read process"},
      {"read", 1, ZUCOM_ERR_READ, "receive:225 ERROR :: ZUCOM: error in read process", true},
      {"read", 2, ZUCOM_ERR_READ, "receive:225 ERROR :: ZUCOM: error in read process", true}}},
    commandRow("FLUSHINQ", "", "tcflush", ZUCOM_ERR_FLUSH_INPUT, "292 ERROR :: ZUCOM: error in delete input buffer"),
    commandRow("FLUSHOUTQ", "", "tcflush", ZUCOM_ERR_FLUSH_OUTPUT, "302 ERROR :: ZUCOM: error in delete output buffer"),
    commandRow("SETDTR", "ON", "ioctl", ZUCOM_ERR_CHANGE_PARAMETER, "323 ERROR :: " + change),
    commandRow("SETDTR", "OFF", "ioctl", ZUCOM_ERR_CHANGE_PARAMETER, "332 ERROR :: " + change),
    commandRow("SETRTS", "ON", "ioctl", ZUCOM_ERR_CHANGE_PARAMETER, "356 ERROR :: " + change),
    commandRow("SETRTS", "OFF", "ioctl", ZUCOM_ERR_CHANGE_PARAMETER, "365 ERROR :: " + change),
    commandRow("GETDTR", "", "ioctl", ZUCOM_ERR_READ_PARAMETER, "375 ERROR :: " + readParameter),
    commandRow("GETRTS", "", "ioctl", ZUCOM_ERR_READ_PARAMETER, "389 ERROR :: " + readParameter),
    commandRow("GETCTS", "", "ioctl", ZUCOM_ERR_READ_PARAMETER, "403 ERROR :: " + readParameter),
    commandRow("GETDCD", "", "ioctl", ZUCOM_ERR_READ_PARAMETER, "417 ERROR :: " + readParameter),
    commandRow("GETDSR", "", "ioctl", ZUCOM_ERR_READ_PARAMETER, "431 ERROR :: " + readParameter),
    settingRow("BAUD", "115200", "tcsetattr", "593 ERROR :: " + change),
    settingRow("FRAME", "7O2", "tcsetattr", "669 ERROR :: " + change),
    settingRow("OPMODE", "RS232", "ioctl", "496 ERROR :: IOCTL: %s"),
    settingRow("OPMODE", "RS485", "ioctl", "522 ERROR :: " + change),
};

/** Errors by the beginning of the call. */
const struct
{
    const char* call;
    std::vector<int> errors;
} plausible[] = {
    {"open", {EACCES, EBUSY, EINTR, EIO, EISDIR, ELOOP, EMFILE, ENFILE, ENODEV, ENOENT, ENOMEM, ENXIO, EPERM}},
    {"fcntl", {EBADF, EINVAL, EPERM}},
    {"tcgetattr", {EBADF, EIO, ENOTTY}},
    {"tcsetattr", {EBADF, EINTR, EINVAL, EIO, ENOTTY}},
    {"tcflush", {EBADF, EIO, EINVAL, ENOTTY}},
    {"ioctl", {EBADF, EBUSY, EFAULT, EINVAL, EIO, ENOSYS, ENOTTY, EPERM}},
    {"select", {EBADF, EINTR, EINVAL, ENOMEM}},
    {"read", {EBADF, EFAULT, EINVAL, EIO, ENODEV, ENXIO}},
    {"write", {EAGAIN, EBADF, EFAULT, EFBIG, EINTR, EINVAL, EIO, ENODEV, ENOSPC, ENXIO, EPIPE}},
    {"close", {EBADF, EINTR, EIO, ENOSPC}},
    {"nanosleep", {EFAULT, EINTR, EINVAL}},
};

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

int lastError(int handle)
{
    int code = 1;
    char text[ZUCOM_ERROR_TEXT_SIZE];
    EXPECT_EQ(0, ZUCOM_GetLastError(handle, &code, text));
    return code;
}

Lines errorLines(const Lines& lines)
{
    Lines errors;
    for (const std::string& line : lines)
        if (line.find(" ERROR :: ") != std::string::npos || line.find("openPort:97 ") == 0)
            errors.push_back(line);
    return errors;
}

/** One operation on a port of its own. */
class Attempt
{
public:
    explicit Attempt(const Operation& operation) : operation_(operation)
    {
        device_.rs485.flags = 5;
        lastErrorBefore_ = lastError(0);
        if (isOpening())
            return;
        handle_ = ZUCOM_OpenPort(reader_.path());
        reader_.write(frame);
        uint8_t buffer[16];
        EXPECT_EQ(5, ZUCOM_Receive(handle_, buffer, sizeof buffer)); // now a transmission has a gap to keep
        reader_.answers({{5, 255}, {0x52, 0, 0}});
        device_.before("select", 0, [this] { reader_.writeNext(); });
        LogCapture::take();
        device_.take();
    }

    ~Attempt()
    {
        device_.clearRules();
        for (int handle = ZUCOM_GetPortList(0); handle > 0; handle = ZUCOM_GetPortList(0))
            ZUCOM_ClosePort(handle);
        LogCapture::take();
    }

    /** @return The calls that the operation makes when nothing fails. */
    Calls calls()
    {
        check(start(), operation_.result, {});
        return device_.take();
    }

    /** Lets the call number @p index fail, which is call number @p nth of those that begin as @p call does. */
    void fail(const std::string& call, int index, int nth, int error)
    {
        Consequence expected = consequence(call, nth);
        if (const std::size_t at = expected.line.find("%s"); at != std::string::npos)
            expected.line.replace(at, 2, strerror(error));
        device_.fail("", index, error);
        check(start(), expected.result ? expected.result : operation_.result,
              expected.line.empty() ? Lines{} : Lines{expected.line});
        device_.clearRules();
        device_.take();
        checkWhatFollows(call, expected);
    }

    /** Takes the adapter away: reading gives no byte, everything else an error. */
    void unplug()
    {
        for (const char* call : {"write", "tcsetattr", "tcflush", "ioctl"})
            device_.fail(call, 0, EIO);
        device_.answer("select", 0, 1);
        device_.answer("read", 0, 0);
        const bool receiving = operation_.name == std::string("receive");
        const Consequence& first = operation_.consequences.front();
        EXPECT_EQ(receiving ? ZUCOM_ERR_NOT_CONNECTED : first.result, start());
        if (!isClosing())
        {
            EXPECT_EQ(receiving || first.closes ? -1 : handle_, device_.descriptor() < 0 ? -1 : handle_);
            EXPECT_EQ(0, ZUCOM_ClosePort(handle_));
        }
        EXPECT_EQ(-1, device_.descriptor());
        LogCapture::take();
    }

private:
    bool isOpening() const { return operation_.name == std::string("open"); }
    bool isClosing() const { return operation_.name == std::string("close"); }

    Consequence consequence(const std::string& call, int nth) const
    {
        for (const Consequence& row : operation_.consequences)
            if (row.nth == nth && call.compare(0, row.call.size(), row.call) == 0)
                return row;
        return {call, nth, 0, ""};
    }

    int start()
    {
        const int result = operation_.run(handle_, reader_.path());
        if (isOpening() && result > 0)
            handle_ = result;
        return isOpening() && result > 0 ? 0 : result;
    }

    void check(int result, int expected, const Lines& errors)
    {
        EXPECT_EQ(expected, result);
        EXPECT_EQ(LogCapture::visible(errors), errorLines(LogCapture::take()));
        const bool copied =
            isOpening() || operation_.name == std::string("transmit") || operation_.name == std::string("receive");
        EXPECT_EQ(result < 0 && copied ? result : lastErrorBefore_, lastError(0));
        if (handle_ > 0 && !isClosing())
        {
            EXPECT_EQ(result < 0 ? result : 0, lastError(handle_));
        }
    }

    void checkWhatFollows(const std::string& call, const Consequence& expected)
    {
        const bool gone = isClosing() || (isOpening() && expected.closes);
        EXPECT_EQ(gone ? ZUCOM_ERR_PORT_LIST_EMPTY : handle_, ZUCOM_GetPortList(0));
        if (gone || expected.closes)
        {
            EXPECT_EQ(-1, device_.descriptor());
            if (!(isClosing() && call.find("tcsetattr") == 0))
            {
                EXPECT_EQ(line_, DeviceFaults::lineText(reader_.line()));
            }
        }
        if (!gone)
        {
            const int next = ZUCOM_Transmit(handle_, frame.data(), frame.size());
            EXPECT_EQ(expected.closes ? ZUCOM_ERR_NOT_CONNECTED : 5, next);
            uint8_t buffer[16];
            ZUCOM_DoPortCmd(handle_, "FLUSHINQ", value);
            reader_.write(frame);
            const int received = ZUCOM_Receive(handle_, buffer, sizeof buffer);
            EXPECT_EQ(expected.closes ? ZUCOM_ERR_NOT_CONNECTED : 5, received);
            EXPECT_EQ(0, ZUCOM_ClosePort(handle_));
            EXPECT_EQ(line_, DeviceFaults::lineText(reader_.line()));
        }
        const bool rs485Unknown = call.find("TIOCGRS485") != std::string::npos ||
                                  call.find("TIOCSRS485") != std::string::npos || (isOpening() && expected.closes);
        if (!rs485Unknown)
        {
            EXPECT_EQ(5u, device_.rs485.flags);
        }
        LogCapture::take();
    }

    const Operation& operation_;
    PtyReader reader_;
    const std::string line_ = DeviceFaults::lineText(reader_.line());
    DeviceFaults device_;
    int handle_ = 0;
    int lastErrorBefore_;
};

TEST(FaultSweep, everyFailingCallOfEveryOperationHasItsStatedConsequence)
{
    const LogCapture log;
    const std::ptrdiff_t descriptors = openDescriptors();
    int triples = 0;
    for (const Operation& operation : operations)
    {
        const Calls calls = Attempt(operation).calls();
        ASSERT_FALSE(calls.empty()) << operation.name;
        for (std::size_t index = 0; index < calls.size(); ++index)
        {
            const std::string function = calls[index].substr(0, calls[index].find('('));
            int nth = 0;
            for (std::size_t earlier = 0; earlier <= index; ++earlier)
                nth += calls[earlier].compare(0, function.size() + 1, function + '(') == 0;
            if (function == "ioctl")
                nth = 1; // told apart by their requests
            for (const auto& row : plausible)
                for (const int error : function == row.call ? row.errors : std::vector<int>{})
                {
                    SCOPED_TRACE(std::string(operation.name) + ": " + calls[index] + ": " + strerror(error));
                    Attempt(operation).fail(calls[index], static_cast<int>(index) + 1, nth, error);
                    EXPECT_EQ(descriptors, openDescriptors());
                    ++triples;
                }
        }
    }
    RecordProperty("triples", triples);
    std::printf("fault sweep: %zu operations, %d (operation, call, fault) triples\n", std::size(operations), triples);
}

TEST(FaultSweep, anAdapterThatIsPulledOutEndsEveryOperationAndLeaksNothing)
{
    const LogCapture log;
    const std::ptrdiff_t descriptors = openDescriptors();
    for (const Operation& operation : operations)
    {
        SCOPED_TRACE(operation.name);
        if (operation.name != std::string("open"))
            Attempt(operation).unplug();
        EXPECT_EQ(descriptors, openDescriptors());
    }
}

} // namespace
