// A C++17 program that uses every exported class, derives from the loggers and reads what derived loggers may read.
#include <cstdio>
#include <string>
#include <vector>

#include <zucom/zuHelper.h>
#include <zucom/zuLoggerBase.h>
#include <zucom/zuParameter.h>
#include <zucom/zuProtocol.h>
#include <zucom/zucom.h>
#include <zucom/zucomErrorText.h>
#include <zucom/zucomLogger.h>
#include <zucom/zucomPort.h>
#include <zucom/zucomPortHandler.h>

namespace
{
int failures = 0;
std::vector<std::string> received; // what the log callback was given

void expect(const char* what, bool holds)
{
    if (!holds)
    {
        std::fprintf(stderr, "does not hold: %s\n", what);
        ++failures;
    }
}
#define EXPECT(condition) expect(#condition, condition)

void collect(void* lines, const char* line) { static_cast<std::vector<std::string>*>(lines)->push_back(line); }

// A logger of the application: its own lines and, in every line, the library's calls to the virtual operations.
class DoorLogger : public ZuLoggerBase
{
public:
    int lines = 0;
    std::string section;

    explicit DoorLogger(int32_t id) : ZuLoggerBase("door", id) { ZuLoggerBase::setLogConditions(); }

    void writeLogLine(const std::string& line) override
    {
        ++lines;
        ZuLoggerBase::writeLogLine(line);
    }

    void setLogConditions(const char* text, char) override
    {
        section = text;
        logConditions = 0x80000001U;
    }

    bool hasMembersAsConfigured() const
    {
        return loggerGlobal == ZuLoggerGlobal::instance() && loggerName == "DOOR" && loggerId == 7 &&
               logConditions == 0x80000001U && logFileName.empty() && logFileHeaderPending && logRelTime &&
               !logConsole && !logFileShared && !logFilePerReader && androidLogCat && udpSocket.socketFd < 0;
    }
};

class QuietLogger : public ZucomLogger
{
public:
    using ZucomLogger::ZucomLogger;
    void writeLogMessage(const std::string&, const std::string&, const std::string&) override {}
    bool tracesAndReportsErrors() const { return logConditions == 0x80000001U; }
};

void useLoggers()
{
    ZuLoggerGlobal::presetConfig("[OUTPUTTER]\nlogreltime=on\nandroidlogcat=on\n[DOOR]\nopen=1\n"
                                 "[ZUCOM]\nlogtrace=on\nlogerror=on\n");
    ZuLoggerGlobal::presetCallback(&received, collect);
    DoorLogger door(7);
    EXPECT(door.hasMembersAsConfigured());
    EXPECT(ZuParameter::getSection("[DOOR]\nopen=1\n", "DOOR") == door.section);
    ZuLoggerBase& base = door;
    base.writeLogMessage(base.currentLogTime(), " here", "opened");
    EXPECT(door.lines == 1);
    EXPECT(received.size() == 1 && received[0].find(" :: DOOR here :: opened") != std::string::npos);

    QuietLogger quiet(1);
    EXPECT(quiet.tracesAndReportsErrors());
    static_cast<ZuLoggerBase&>(quiet).writeLogMessage("", "", "lost");
    EXPECT(received.size() == 1);
    const uint8_t bytes[] = {0x52, 0xAB};
    EXPECT(ZucomLogger::printProt(bytes, sizeof bytes) == "52 ab ");
    EXPECT(g_loggerTimeRef.startTime_usec > 0 && g_loggerTimeRef.startDateTime.size() == 19);
    EXPECT(g_loggerPreset.presetText.empty());
}

void useFrames()
{
    const uint8_t payload[] = {0x52, 0x00};
    ZuProt frame;
    EXPECT(frame.setPayload(payload, sizeof payload, 0, 0, 255));
    EXPECT(frame.protocolToString() == " 06 FF|52 00|0F 6E");
    std::size_t length = 0;
    const uint8_t* bytes = ZuPayl(payload, sizeof payload).payload(&length);
    EXPECT(bytes && length == sizeof payload);

    ZuProtQueue queue;
    const uint8_t* frameBytes = frame.protocol(&length);
    uint8_t* room = queue.next(length);
    for (std::size_t i = 0; i < length; ++i)
        room[i] = frameBytes[i];
    queue.addSize(length);
    uint8_t popped[8];
    EXPECT(queue.busAddrFilter == 255 && queue.popProtocol(popped, sizeof popped) == 6);
}

void usePortsAndHelpers()
{
    char text[] = "opMode";
    strtoup(text);
    EXPECT(std::string(text) == "OPMODE");
    EXPECT(g_hexLookup.hexValue[unsigned{'f'}] == 15 && g_hexLookup.hexDigit[15] == 'F');
    EXPECT(ZuHelper::deviceIdToHexString(255) == "000000FF");
    EXPECT(ZuSocket::isIPv4Address("127.0.0.1"));
    EXPECT(std::string(ZucomErrorText::getErrorText(ZUCOM_ERR_NULL)) == "ZUCOM: pointer is NULL");

    ZucomPort port("/dev/null");
    char value[ZUCOM_VALUE_SIZE] = "";
    EXPECT(port.getPortPara("TIMEOUT", value) == ZUCOM_OK && std::string(value) == "1000");
    EXPECT(port.openPort() == ZUCOM_ERR_PORT_OBJECT);
    EXPECT(ZucomPortHandler::instance()->getPortList(0) == ZUCOM_ERR_PORT_LIST_EMPTY);
    EXPECT(received.size() > 1); // the port told its story
}
} // namespace

int main()
{
    useLoggers();
    useFrames();
    usePortsAndHelpers();
    return failures != 0;
}
