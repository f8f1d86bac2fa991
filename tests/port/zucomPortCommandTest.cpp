#include <cerrno>
#include <cstring>

#include <sys/ioctl.h>

#include "tests/port/portTest.h"

namespace
{

class PortCommand : public PortTest
{
protected:
    const std::string begin_ = "doPortCmd:267 :: Executing port command";
    char value_[256] = "";

    static std::string shown(const std::string& command, const std::string& value)
    {
        return "doPortCmd:285 :: Command: " + command + " Value: " + value;
    }
    static std::string error(int tag, const std::string& text)
    {
        return "doPortCmd:" + std::to_string(tag) + " ERROR :: " + text;
    }

    /** Runs a command and checks that the value became @p after. */
    void checkCommand(const char* command, const std::string& value, const std::string& after, int result,
                      const Lines& lines, const Calls& calls)
    {
        SCOPED_TRACE(std::string(command) + ' ' + value);
        std::strcpy(value_, value.c_str());
        check(result, Lines{begin_} + lines, calls, [&] { return port_.doPortCmd(command, value_); });
        EXPECT_EQ(after, value_);
    }
};

const struct
{
    const char* name;
    int bit;
    int tag; // when reading fails
} readLines[] = {{"GETDTR", TIOCM_DTR, 375},
                 {"GETRTS", TIOCM_RTS, 389},
                 {"GETCTS", TIOCM_CTS, 403},
                 {"GETDCD", TIOCM_CAR, 417},
                 {"GETDSR", TIOCM_DSR, 431}};

const struct
{
    const char* name;
    const char* bit;
    int rs485Tag, raiseTag, lowerTag;
} setLines[] = {{"SETDTR", "0x2", 311, 323, 332}, {"SETRTS", "0x4", 343, 356, 365}};

const struct
{
    const char* name;
    const char* call;
    int code, tag;
    const char* text;
} flushes[] = {
    {"FLUSHINQ", "tcflush(fd, TCIFLUSH)", ZUCOM_ERR_FLUSH_INPUT, 292, "ZUCOM: error in delete input buffer"},
    {"FLUSHOUTQ", "tcflush(fd, TCOFLUSH)", ZUCOM_ERR_FLUSH_OUTPUT, 302, "ZUCOM: error in delete output buffer"}};

const char* const changeError = "ZUCOM: error in change port parameter";

TEST_F(PortCommand, flushesOneQueue)
{
    open();
    for (const auto& flush : flushes)
    {
        for (const char* value : {"", "anything"})
            checkCommand(flush.name, value, value, 0, {shown(flush.name, value)}, {flush.call});
        device_.fail("tcflush", 1, EIO);
        checkCommand(flush.name, "", "", flush.code, {shown(flush.name, ""), error(flush.tag, flush.text)},
                     {flush.call});
        device_.clearRules();
    }
}

TEST_F(PortCommand, discardsWhatWaitsToBeRead)
{
    open();
    reader_.write({5, 255, 1, 2, 3});
    EXPECT_EQ(0, port_.doPortCmd("FLUSHINQ", value_));
    uint8_t buffer[8];
    EXPECT_EQ(ZUCOM_ERR_TIMEOUT, port_.receive(buffer, sizeof buffer));
    LogCapture::take();
}

TEST_F(PortCommand, raisesALineForOnAndLowersItForAnythingElse)
{
    open();
    for (const auto& line : setLines)
        for (const char* value : {"ON", "on", "On", "OFF", "", "0", "1", "ONE", " ON"})
        {
            const bool raise = strcasecmp(value, "on") == 0;
            const std::string request = raise ? "TIOCMBIS" : "TIOCMBIC";
            device_.modemLines = raise ? TIOCM_CTS : TIOCM_CTS | TIOCM_DTR | TIOCM_RTS;
            checkCommand(line.name, value, value, 0, {shown(line.name, value)},
                         {"ioctl(fd, " + request + ", " + line.bit + ")"});
            device_.fail("ioctl", 1, EIO);
            checkCommand(line.name, value, value, ZUCOM_ERR_CHANGE_PARAMETER,
                         {shown(line.name, value), error(raise ? line.raiseTag : line.lowerTag, changeError)},
                         {"ioctl(fd, " + request + ", " + line.bit + ")"});
            device_.clearRules();
        }
}

TEST_F(PortCommand, leavesTheLinesToTheDriverInRs485Mode)
{
    open();
    set("OPMODE", "RS485");
    for (const auto& line : setLines)
        checkCommand(line.name, "ON", "ON", ZUCOM_ERR_CHANGE_PARAMETER,
                     {shown(line.name, "ON"), error(line.rs485Tag, "Not available in RS485 mode")}, {});
    for (const auto& line : readLines)
        checkCommand(line.name, "", "OFF", 0, {shown(line.name, "")}, {"ioctl(fd, TIOCMGET)"});
    set("OPMODE", "RS232");
    checkCommand("SETRTS", "ON", "ON", 0, {shown("SETRTS", "ON")}, {"ioctl(fd, TIOCMBIS, 0x4)"});
}

TEST_F(PortCommand, readsOneLine)
{
    open();
    for (const auto& line : readLines)
    {
        device_.modemLines = line.bit;
        checkCommand(line.name, "before", "ON", 0, {shown(line.name, "before")}, {"ioctl(fd, TIOCMGET)"});
        device_.modemLines = ~line.bit;
        checkCommand(line.name, "", "OFF", 0, {shown(line.name, "")}, {"ioctl(fd, TIOCMGET)"});
        device_.fail("ioctl", 1, EIO);
        checkCommand(line.name, "before", "before", ZUCOM_ERR_READ_PARAMETER,
                     {shown(line.name, "before"), error(line.tag, "ZUCOM: error in read port parameter")},
                     {"ioctl(fd, TIOCMGET)"});
        device_.clearRules();
        device_.answer("ioctl", 1, 1); // anything but 0 is a failure
        checkCommand(line.name, "before", "before", ZUCOM_ERR_READ_PARAMETER,
                     {shown(line.name, "before"), error(line.tag, "ZUCOM: error in read port parameter")},
                     {"ioctl(fd, TIOCMGET)"});
        device_.clearRules();
    }
}

TEST_F(PortCommand, takesNamesInAnyLetterCase)
{
    open();
    for (const char* name : {"getcts", "GetCts", "GETCTS"})
        checkCommand(name, "", "OFF", 0, {shown("GETCTS", "")}, {"ioctl(fd, TIOCMGET)"});
}

TEST_F(PortCommand, refusesWhatIsNoCommand)
{
    const std::string unknown = error(443, "ZUCOM: unkown port command");
    const std::string range = error(278, "ZUCOM: parameter out of range");
    const std::string null = error(271, "ZUCOM: pointer is NULL");
    const std::string longest(127, 'X');
    const std::string tooLong(128, 'X');
    for (const char* name : {"FLUSH", "", "GETDT", "GETDTRX", "SETCTS", " GETDTR"})
        checkCommand(name, "v", "v", ZUCOM_ERR_UNKNOWN_COMMAND, {shown(name, "v"), unknown}, {});
    checkCommand(longest.c_str(), longest, longest, ZUCOM_ERR_UNKNOWN_COMMAND, {shown(longest, longest), unknown}, {});
    checkCommand(tooLong.c_str(), "", "", ZUCOM_ERR_OUT_OF_RANGE, {range}, {});
    checkCommand("GETDTR", tooLong, tooLong, ZUCOM_ERR_OUT_OF_RANGE, {range}, {});
    check(ZUCOM_ERR_NULL, {begin_, null}, {}, [&] { return port_.doPortCmd("FLUSHINQ", nullptr); });
    check(ZUCOM_ERR_NULL, {begin_, null}, {}, [&] { return port_.doPortCmd(nullptr, value_); });
}

TEST_F(PortCommand, failsWithItsOwnCodeOnAPortThatIsNotOpen)
{
    for (const auto& flush : flushes)
        checkCommand(flush.name, "", "", flush.code, {shown(flush.name, ""), error(flush.tag, flush.text)},
                     {std::string(flush.call).replace(8, 2, "-1")});
    checkCommand("SETDTR", "ON", "ON", ZUCOM_ERR_CHANGE_PARAMETER, {shown("SETDTR", "ON"), error(323, changeError)},
                 {"ioctl(-1, TIOCMBIS, 0x2)"});
    checkCommand("GETDSR", "x", "x", ZUCOM_ERR_READ_PARAMETER,
                 {shown("GETDSR", "x"), error(431, "ZUCOM: error in read port parameter")}, {"ioctl(-1, TIOCMGET)"});
}

} // namespace
