#include <cerrno>
#include <cstring>

#include "tests/port/portTest.h"

namespace
{

class PortParameter : public PortTest
{
protected:
    const std::string setBegin_ = "setPortPara:455 :: Setting port parameter";
    const std::string getBegin_ = "getPortPara:721 :: Getting port parameter";

    static std::string setError(int tag, const std::string& text)
    {
        return "setPortPara:" + std::to_string(tag) + " ERROR :: " + text;
    }
    static std::string upper(std::string text)
    {
        strtoup(text.data());
        return text;
    }

    void checkSet(const std::string& key, const std::string& value, int result, const Lines& lines, const Calls& calls)
    {
        SCOPED_TRACE(key + '=' + value);
        check(result, Lines{setBegin_, "setPortPara:473 :: Parameter: " + upper(key) + " Value: " + value} + lines,
              calls, [&] { return port_.setPortPara(key.c_str(), value.c_str()); });
    }

    void checkGet(const std::string& key, const std::string& value)
    {
        char text[256] = "";
        check(0, {getBegin_, "getPortPara:741 :: Parameter: " + upper(key), "getPortPara:811 :: Value: " + value}, {},
              [&] { return port_.getPortPara(key.c_str(), text); });
        EXPECT_EQ(value, text) << key;
    }

    static std::string apply(const std::string& line) { return "tcsetattr(fd, TCSANOW, " + line + " raw)"; }
};

const char* const range = "ZUCOM: parameter out of range";
const char* const change = "ZUCOM: error in change port parameter";

TEST_F(PortParameter, storesNumbersWithinTheirRange)
{
    const struct
    {
        const char* key;
        const char* value;
        const char* after; // what reads back
        int tag;           // of the error, 0 for success
    } cases[] = {{"BUSADDRESS", "7", "7", 0},
                 {"busaddress", "0", "0", 0},
                 {"BUSADDRESS", "255", "255", 0},
                 {"BUSADDRESS", "256", "255", 544},
                 {"BUSADDRESS", "-1", "255", 544},
                 {"BUSADDRESS", "12abc", "12", 0},
                 {"BUSADDRESS", " \t+13", "13", 0},
                 {"BUSADDRESS", "", "0", 0},
                 {"BUSADDRESS", "abc", "0", 0},
                 {"BUSADDRESS", "4294967301", "5", 0},    // taken as a 32-bit number
                 {"BUSADDRESS", "2147483648", "5", 544},  // likewise
                 {"BUSADDRESS", "1099511627776", "0", 0}, // likewise
                 {"BUSADDRESS", "99999999999999999999", "0", 544},
                 {"TIMEOUT", "0", "0", 0},
                 {"timeout", "250", "250", 0},
                 {"TIMEOUT", "99999", "99999", 0},
                 {"TIMEOUT", "100000", "99999", 687},
                 {"TIMEOUT", "2147483647", "99999", 687},
                 {"TIMEOUT", "-1", "99999", 680},
                 {"TIMEOUT", "2147483648", "99999", 680},
                 {"TIMEOUT", "ms", "0", 0},
                 {"TXDELAYTIME", "20", "20", 0},
                 {"TXDELAYTIME", "0", "0", 0},
                 {"TXDELAYTIME", "999", "999", 0},
                 {"TXDELAYTIME", "1000", "999", 700},
                 {"TXDELAYTIME", "-1", "999", 700},
                 {"TXDELAYTIME", "5ms", "5", 0}};
    for (const bool opened : {false, true})
    {
        if (opened)
            open();
        for (const auto& row : cases)
        {
            checkSet(row.key, row.value, row.tag ? ZUCOM_ERR_OUT_OF_RANGE : 0,
                     row.tag ? Lines{setError(row.tag, range)} : Lines{}, {});
            checkGet(row.key, row.after);
        }
    }
}

TEST_F(PortParameter, storesAnyDevicePath)
{
    open();
    const std::string longPath(200, 'p');
    for (const std::string& path : {std::string("elsewhere"), std::string(), longPath})
    {
        checkSet("DevicePath", path, 0, {}, {});
        checkGet("DEVICEPATH", path);
    }
}

TEST_F(PortParameter, appliesEveryBaudRateAtOnce)
{
    open();
    for (const char* rate : {"4800", "9600", "19200", "38400", "57600", "115200", "230400", "460800", "921600"})
    {
        checkSet("BAUD", rate, 0, {}, {apply(std::string(rate) + " 8E1")});
        checkGet("BAUD", rate);
    }
    for (const char* key : {"baud", "Baud"})
        checkSet(key, "115200bps", 0, {}, {apply("115200 8E1")});
    checkSet("BAUD", "4294976896", 0, {}, {apply("9600 8E1")}); // taken as a 32-bit number
    for (const char* rate : {"2400", "1200", "0", "", "-9600", "9601", "1000000", "13", "B9600"})
        checkSet("BAUD", rate, ZUCOM_ERR_OUT_OF_RANGE, {setError(583, range)}, {});
    checkGet("BAUD", "9600");
}

TEST_F(PortParameter, appliesEveryFrameAtOnce)
{
    open();
    for (const char bits : {'5', '6', '7', '8'})
        for (const char parity : {'E', 'O', 'e', 'o'})
            for (const char stop : {'1', '2'})
            {
                const std::string frame = {bits, static_cast<char>(toupper(parity)), stop};
                checkSet("FRAME", {bits, parity, stop}, 0, {}, {apply("9600 " + frame)});
                checkGet("FRAME", frame);
            }
    checkSet("FRAME", "7N1", 0, {}, {apply("9600 7N(odd)1")}); // the bit stays, and without parity means nothing
    checkGet("FRAME", "7N1");
    checkSet("FRAME", "8E1", 0, {}, {apply("9600 8E1")});
    for (const char* frame : {"8n1", "8N1", "8N1x", " +8N1", "8N 1"})
        checkSet("FRAME", frame, 0, {}, {apply("9600 8N1")});
    checkGet("frame", "8N1");
}

TEST_F(PortParameter, refusesFramesThatAreNoneAndKeepsTheOldOne)
{
    open();
    checkSet("FRAME", "7O2", 0, {}, {apply("9600 7O2")});
    const struct
    {
        const char* value;
        int tag;
    } cases[] = {{"9E1", 627},  {"4E1", 627},   {"", 627},   {"E81", 627}, {"-8E1", 627}, {"8X1", 649}, {"8", 649},
                 {"5 E1", 649}, {"8 E 1", 649}, {"8E", 661}, {"6E3", 661}, {"8N0", 661},  {"8EE", 661}};
    for (const auto& row : cases)
    {
        checkSet("FRAME", row.value, ZUCOM_ERR_OUT_OF_RANGE, {setError(row.tag, range)}, {});
        checkGet("FRAME", "7O2");
    }
    checkSet("BAUD", "19200", 0, {}, {apply("19200 7O2")});
}

TEST_F(PortParameter, keepsTheSettingsThatTheDeviceRefusedToLeave)
{
    open();
    for (const int error : {EIO, EINVAL, EINTR})
    {
        device_.fail("tcsetattr", 0, error);
        checkSet("BAUD", "115200", ZUCOM_ERR_CHANGE_PARAMETER, {setError(593, change)}, {apply("115200 8E1")});
        checkGet("BAUD", "9600");
        checkSet("FRAME", "7O2", ZUCOM_ERR_CHANGE_PARAMETER, {setError(669, change)}, {apply("9600 7O2")});
        checkGet("FRAME", "8E1");
        device_.clearRules();
    }
    checkSet("FRAME", "8N1", 0, {}, {apply("9600 8N1")});
}

TEST_F(PortParameter, switchesTheDriversRs485Mode)
{
    const std::string enable485 = "setPortPara:518 :: Enable RS485";
    const std::string enable232 = "setPortPara:491 :: Enable RS232";
    const std::string call485 = "ioctl(fd, TIOCSRS485, flags 3 delays 5 5)";
    const std::string call232 = "ioctl(fd, TIOCSRS485, flags 0 delays 0 0)";
    open();
    checkSet("OpMode", "RS485", 0, {enable485}, {call485});
    for (const char* value : {"rs485", "", "RS232 ", "RS422"})
        checkSet("OPMODE", value, ZUCOM_ERR_OUT_OF_RANGE, {setError(529, range)}, {});
    checkGet("OPMODE", "RS485");
    checkSet("OPMODE", "RS232", 0, {enable232}, {call232});
    checkGet("opmode", "RS232");
    for (const int error : {EIO, ENOTTY})
    {
        device_.fail("ioctl", 0, error);
        checkSet("OPMODE", "RS485", ZUCOM_ERR_CHANGE_PARAMETER, {enable485, setError(522, change)}, {call485});
        checkGet("OPMODE", "RS485");
        checkSet("OPMODE", "RS232", ZUCOM_ERR_CHANGE_PARAMETER,
                 {enable232, setError(496, std::string("IOCTL: ") + strerror(error))}, {call232});
        checkGet("OPMODE", "RS232");
        device_.clearRules();
    }
}

TEST_F(PortParameter, reachesNoDeviceOnAPortThatIsNotOpen)
{
    open();
    ASSERT_EQ(0, port_.closePort());
    LogCapture::take();
    device_.take();
    checkSet("BAUD", "19200", ZUCOM_ERR_CHANGE_PARAMETER, {setError(593, change)},
             {"tcsetattr(-1, TCSANOW, 19200 8E1 raw)"});
    checkSet("FRAME", "8N1", ZUCOM_ERR_CHANGE_PARAMETER, {setError(669, change)},
             {"tcsetattr(-1, TCSANOW, 9600 8N1 raw)"});
    checkSet("OPMODE", "RS485", ZUCOM_ERR_CHANGE_PARAMETER, {"setPortPara:518 :: Enable RS485", setError(522, change)},
             {"ioctl(-1, TIOCSRS485, flags 3 delays 5 5)"});
    checkGet("OPMODE", "RS485");
    checkGet("FRAME", "8E1");
}

TEST_F(PortParameter, refusesKeysThatAreNone)
{
    const std::string unknown = "ZUCOM: unknown parameter: ";
    const std::string longest(127, 'x');
    const std::string tooLong(128, 'x');
    char value[8] = "kept";
    for (const std::string& key : {std::string("SPEED"), std::string("txdelaytime"), std::string("TxDelayTime"),
                                   std::string(), std::string("BAUD "), longest})
    {
        checkSet(key, "1", ZUCOM_ERR_UNKNOWN_PARAMETER, {setError(710, unknown + key)}, {});
        check(ZUCOM_ERR_UNKNOWN_PARAMETER,
              {getBegin_, "getPortPara:741 :: Parameter: " + upper(key), "getPortPara:809 ERROR :: " + unknown + key},
              {}, [&] { return port_.getPortPara(key.c_str(), value); });
    }
    checkSet("ERRCODE", "0", ZUCOM_ERR_UNKNOWN_PARAMETER, {setError(710, unknown + "ERRCODE")}, {});
    const std::string odd = "ZUCOM: odd parameterstring";
    check(ZUCOM_ERR_ODD_PARAMETER, {setBegin_, setError(468, odd)}, {},
          [&] { return port_.setPortPara(tooLong.c_str(), "1"); });
    check(ZUCOM_ERR_ODD_PARAMETER, {getBegin_, "getPortPara:734 ERROR :: " + odd}, {},
          [&] { return port_.getPortPara(tooLong.c_str(), value); });
    EXPECT_STREQ("kept", value);
}

TEST_F(PortParameter, refusesNullPointers)
{
    const std::string null = "ZUCOM: pointer is NULL";
    char value[8] = "kept";
    const Lines setLines = {setBegin_, setError(460, null)};
    const Lines getLines = {getBegin_, "getPortPara:726 ERROR :: " + null};
    check(ZUCOM_ERR_NULL, setLines, {}, [&] { return port_.setPortPara(nullptr, "1"); });
    check(ZUCOM_ERR_NULL, setLines, {}, [&] { return port_.setPortPara("BAUD", nullptr); });
    check(ZUCOM_ERR_NULL, getLines, {}, [&] { return port_.getPortPara(nullptr, value); });
    check(ZUCOM_ERR_NULL, getLines, {}, [&] { return port_.getPortPara("BAUD", nullptr); });
    EXPECT_STREQ("kept", value);
}

TEST_F(PortParameter, reportsTheLastFailureInErrcode)
{
    open();
    checkGet("errcode", "0");
    checkSet("BUSADDRESS", "300", ZUCOM_ERR_OUT_OF_RANGE, {setError(544, range)}, {});
    checkGet("ERRCODE", "-1051");
    checkSet("BUSADDRESS", "3", 0, {}, {});
    checkGet("ErrCode", "-1051");
}

TEST_F(PortParameter, writesNoMoreThanTheAnswer)
{
    open();
    set("TIMEOUT", "99999");
    for (const auto& [key, answer] : std::vector<std::pair<std::string, std::string>>{
             {"OPMODE", "RS232"}, {"TIMEOUT", "99999"}, {"FRAME", "8E1"}, {"BUSADDRESS", "255"}})
    {
        std::string buffer(ZUCOM_VALUE_SIZE, '#');
        EXPECT_EQ(0, port_.getPortPara(key.c_str(), buffer.data()));
        EXPECT_EQ(answer + '\0' + std::string(ZUCOM_VALUE_SIZE - answer.size() - 1, '#'), buffer);
    }
}

} // namespace
