// The outputs and what configures them, the line format, the time.

#include <zucom/zuLoggerBase.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <unistd.h>

#include "tests/logger/collector.h"
#include "tests/logger/interposed.h"
#include "tests/logger/logRun.h"

#include <gtest/gtest.h>

namespace
{
using Files = std::map<std::string, std::string>;

struct SettingCase
{
    const char *entries, *settings;
};

const SettingCase settingCases[] = {
    {"", "abs"},
    {"logconsole=on", "abs console"},
    {"LogConsole = On", "abs console"},
    {"logconsole=", "abs console"},
    {"logconsole", "abs console"},
    {"logconsole=OFF", "abs console"},
    {"logconsole=no", "abs console"},
    {"logconsole=false", "abs console"},
    {"logconsole=00", "abs console"},
    {"logconsole=o f f", "abs"},
    {"logconsole=\"o f f\"", "abs console"},
    {"logconsole=0", "abs"},
    {"logconsole=on\nlogconsole=off", "abs"},
    {"logconsole=off\nlogconsole=on", "abs console"},
    {"console=on\nlogconsol=on\nlogconsolee=on", "abs"},
    {"androidlogcat=on", "abs logcat"},
    {"logreltime=on", "rel"},
    {"logabstime=off", "rel"},
    {"logreltime=on\nlogabstime=on", "abs"},
    {"logabstime=on\nlogreltime=on", "rel"},
    {"logabstime=off\nlogreltime=off", "abs"},
    {"logfile=f\nlogfileshared=on", "abs shared ./f-ZUCOM.log"},
    {"logfile=f\nlogfileperreader=on", "abs own ./f-ZUCOM-RH26.log"},
    {"logfile=f\nlogfileshared=on\nlogfileperreader=on", "abs own ./f-ZUCOM-RH26.log"},
    {"logfile=f\nlogfileperreader=on\nlogfileshared=on", "abs shared ./f-ZUCOM.log"},
    {"logfile=f\nlogfileperreader=on\nlogfileshared=off", "abs own ./f-ZUCOM-RH26.log"},
    {"logfile=f\nlogfileshared=on\nlogfileperreader=off", "abs shared ./f-ZUCOM.log"},
    {"logfile=f\nlogfileshared=on\nlogfileshared=off", "abs"},
    {"logfile=f\nlogpath=/a/b/\nlogfileshared=on", "abs shared /a/b//f-ZUCOM.log"},
    {"logfile=f\nlogpath=C:\\logs\nlogfileshared=on", "abs shared C:/logs/f-ZUCOM.log"},
    {"logfile=a\\b\nlogpath=\nlogfileshared=on", "abs shared /a\\b-ZUCOM.log"},
    {"logfile=f\nlogpath=\"/my logs\"\nlogfileperreader=on", "abs own /my logs/f-ZUCOM-RH26.log"},
    {"logfile=one\nlogfile=two\nlogfileshared=on", "abs shared ./two-ZUCOM.log"},
    {"logudpaddr=127.0.0.1\nlogudpport=4711", "abs 127.0.0.1:4711"},
    {"logudpport=1\nlogudpaddr=::1", "abs ::1:1"},
    {"logudpaddr=127.0.0.1\nlogudpport=65535xyz", "abs 127.0.0.1:65535"},
    {"logudpaddr=127.0.0.1\nlogudpport=0x50", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=007", "abs 127.0.0.1:7"},
    {"logudpaddr=/tmp/log.sock", "abs /tmp/log.sock:-1"},
    {"logudpaddr=/tmp/log.sock\nlogudpport=99999", "abs /tmp/log.sock:-1"},
    {"logudpaddr=127.0.0.1", "abs"},
    {"logudpport=4711", "abs"},
    {"logudpaddr=\nlogudpport=4711", "abs"},
    {"logudpaddr=localhost\nlogudpport=4711", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=abc", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=0", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=-4711", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=65536", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=4294971807", "abs"}, // 4711 when it wraps
    {"logudpaddr=127.0.0.1\nlogudpport=18446744073709556327", "abs"},
    {"logudpaddr=127.0.0.1\nlogudpport=80\nlogudpport=", "abs"},
};

TEST(OutputSettings, followTheEntriesInTheirOrder)
{
    for (const SettingCase& c : settingCases)
    {
        const LogRun run(
            [&]
            {
                configure(std::string("[OUTPUTTER]\n") + c.entries);
                return ProbeLogger(26).settings();
            });
        EXPECT_EQ(c.settings, run.result) << c.entries;
    }
}

TEST(OutputSettings, nameTheFileAfterLoadTimeLoggerAndNumber)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfileperreader=on\n");
            return ProbeLogger(-5).settings();
        });
    EXPECT_EQ("abs own ./log-" + g_loggerTimeRef.startDateTime + "-ZUCOM-RH-5.log", run.result);
}

TEST(OutputSettings, takenAgainReplaceTheOnesBefore)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileshared=on\nlogconsole=on\nlogudpaddr=127.0.0.1\nlogudpport=9\n");
            ProbeLogger logger(1);
            const int first = logger.udpSocket.socketFd;
            logger.setOutPutterParameter();
            ProbeLogger next(2);
            return logger.settings() + (first == logger.udpSocket.socketFd ? ", descriptor used again" : ", leak");
        });
    EXPECT_EQ("abs console shared ./f-ZUCOM.log 127.0.0.1:9, descriptor used again", run.result);
}

// A logger of an application.
class OtherLogger : public ZuLoggerBase
{
public:
    OtherLogger(const std::string& name, int32_t id) : ZuLoggerBase(name, id) { ZuLoggerBase::setLogConditions(); }
    void setLogConditions(const char* section, char separator) override
    {
        section_ = section + std::string(1, separator);
    }
    void writeLogLine(const std::string& line) override { lines_ += line + ";"; }

    std::string section_, lines_;
    using ZuLoggerBase::logConditions;
    using ZuLoggerBase::logFileName;
};

TEST(DerivedLogger, readsTheSectionOfItsUpperCaseName)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileperreader=on\n[MY-APP\xE4]\nkey=1\n[my-app]\nkey=2\n");
            OtherLogger logger("my-App\xE4", 3);
            logger.writeLogMessage("T", " L", "M");
            return logger.logFileName + logger.section_ + std::to_string(logger.logConditions) + logger.lines_;
        });
    EXPECT_EQ("./f-MY-APP\xE4-RH3.log\nkey=1\n\n0T :: MY-APP\xE4 L :: M;", run.result);
}

TEST(LogFile, sharedHasOneHeaderForTheProcess)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileshared=on\n");
            std::ofstream("f-ZUCOM.log") << "from before\n";
            ProbeLogger first(1);
            ProbeLogger second(2);
            second.write("a");
            first.write("b");
            ProbeLogger(3).write("c");
            return "";
        });
    EXPECT_EQ((Files{{"f-ZUCOM.log",
                      "from before\n" + fileHeader + "T :: ZUCOM L :: a\nT :: ZUCOM L :: b\nT :: ZUCOM L :: c\n"}}),
              run.files);
}

TEST(LogFile, ofItsOwnHasAHeaderForEveryLogger)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileperreader=on\n");
            ProbeLogger(1).write("a");
            ProbeLogger again(1);
            ProbeLogger silent(2);
            again.write("b");
            again.write("");
            return "";
        });
    EXPECT_EQ((Files{{"f-ZUCOM-RH1.log",
                      fileHeader + "T :: ZUCOM L :: a\n" + fileHeader + "T :: ZUCOM L :: b\nT :: ZUCOM L :: \n"}}),
              run.files);
}

TEST(LogFile, isOpenedForEachLine)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileshared=on\n");
            ProbeLogger logger(1);
            logger.write("a");
            std::filesystem::rename("f-ZUCOM.log", "rotated");
            logger.write("b");
            return "";
        });
    EXPECT_EQ((Files{{"rotated", fileHeader + "T :: ZUCOM L :: a\n"}, {"f-ZUCOM.log", "T :: ZUCOM L :: b\n"}}),
              run.files);
}

TEST(LogFile, thatCannotBeWrittenLosesItsLinesAndNoOther)
{
    for (const char* kind : {"logfileshared=on\n", "logfileperreader=on\n"})
    {
        const LogRun run(
            [&]
            {
                collectCallbacks();
                configure(std::string("[OUTPUTTER]\nlogconsole=on\nlogfile=f\nlogpath=below\n") + kind);
                ProbeLogger logger(1);
                logger.write("no directory");
                std::filesystem::create_directory("below");
                const std::string file = logger.logFileName;
                std::filesystem::create_symlink("/dev/full", file);
                logger.write("disk full");
                std::filesystem::remove(file);
                std::filesystem::create_directory(file);
                logger.write("a directory");
                std::filesystem::remove(file);
                logger.write("good");
                return contentOf(file) + calledBack();
            });
        const std::string good = "T :: ZUCOM L :: good\n"; // no header: its turn is over
        const std::string all =
            "T :: ZUCOM L :: no directory\nT :: ZUCOM L :: disk full\nT :: ZUCOM L :: a directory\n" + good;
        EXPECT_EQ(good + all, run.result);
        EXPECT_EQ(all, run.console);
    }
}

TEST(Datagram, carriesALineWithItsEnd)
{
    for (const char* address : {"127.0.0.1", "::1", "$DIR/collector"})
    {
        const LogRun run(
            [&]() -> std::string
            {
                const std::string path = std::filesystem::current_path() / "collector";
                const Collector collector(address[0] == '$' ? path : address);
                if (!collector.isBound())
                    return "unavailable";
                configure("[OUTPUTTER]\n" + collector.configuration());
                ProbeLogger logger(1);
                logger.write("first");
                logger.writeLogLine("");
                logger.writeLogLine(std::string(60000, 'x'));
                return collector.receive(3);
            });
        EXPECT_TRUE(run.result == "T :: ZUCOM L :: first\n\n" + std::string(60000, 'x') + "\n" ||
                    (run.result == "unavailable" && address == std::string("::1")))
            << address << ": " << run.result.substr(0, 200);
    }
}

TEST(Datagram, thatCannotBeSentIsLost)
{
    const LogRun run(
        []
        {
            collectCallbacks();
            configure("[OUTPUTTER]\nlogudpaddr=$DIR/collector\n");
            ProbeLogger logger(1);
            logger.write("no collector");
            const Collector collector(std::filesystem::current_path() / "collector");
            logger.write("collector");
            logger.writeLogLine(std::string(10 << 20, 'x')); // longer than any datagram
            return collector.receive() + calledBack().substr(0, 80);
        });
    EXPECT_EQ(0U,
              run.result.find("T :: ZUCOM L :: collector\nT :: ZUCOM L :: no collector\nT :: ZUCOM L :: collector\n"))
        << run.result;
}

TEST(Datagram, neverWaitsForACollectorThatDoesNotRead)
{
    const LogRun run(
        []
        {
            const Collector collector(std::filesystem::current_path() / "collector");
            configure("[OUTPUTTER]\n" + collector.configuration());
            ProbeLogger logger(1);
            for (int i = 0; i < 20000; ++i)
                logger.write(std::to_string(i));
            return collector.receive();
        });
    EXPECT_EQ("T :: ZUCOM L :: 0\n", run.result);
}

TEST(Datagram, descriptorIsClosedWithTheLoggerAndBeforeAChildProgram)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogudpaddr=127.0.0.1\nlogudpport=9\n");
            const auto flags = [](int fd) { return ::fcntl(fd, F_GETFD); };
            const int before = ::open("/dev/null", O_RDONLY);
            std::string seen;
            for (int i = 0; i < 10000; ++i)
            {
                const ProbeLogger logger(i);
                if (i == 0)
                    seen += flags(logger.udpSocket.socketFd) == FD_CLOEXEC ? "close-on-exec" : "inherited";
            }
            const int after = ::open("/dev/null", O_RDONLY);
            return seen + (after == before + 1 ? ", none left" : ", leak");
        });
    EXPECT_EQ("close-on-exec, none left", run.result);
}

// What has arrived at each output when the datagram is about to be sent, and when the callback is called.
struct Arrived
{
    const Collector* collector;
    std::string atSend, atCallback;
};

TEST(Outputs, areServedInTheirOrder)
{
    for (const bool shared : {true, false})
    {
        const LogRun run(
            [&]
            {
                std::setvbuf(stdout, nullptr, _IONBF, 0);
                const std::string path = std::filesystem::current_path() / "collector";
                const Collector collector(path);
                static Arrived arrived;
                arrived.collector = &collector;
                // The file is the console's, so that one file shows which of the two comes first.
                std::filesystem::create_symlink(".console", shared ? "f-ZUCOM.log" : "f-ZUCOM-RH1.log");
                interposed::beforeSend = [] { arrived.atSend = contentOf(".console"); };
                ZuLoggerGlobal::presetCallback(&arrived, [](void*, const char* line)
                                               { arrived.atCallback = arrived.collector->receiveWaiting() + line; });
                configure(std::string("[OUTPUTTER]\nlogconsole=on\nlogfile=f\n") + collector.configuration() +
                          (shared ? "logfileshared=on\n" : "logfileperreader=on\n"));
                ProbeLogger(1).write("x");
                return arrived.atSend + arrived.atCallback;
            });
        const std::string line = "T :: ZUCOM L :: x";
        EXPECT_EQ(line + "\n" + fileHeader + line + "\n" + line + "\n" + line, run.result);
    }
}

TEST(LogLine, isComposedOfItsParts)
{
    EXPECT_EQ("0001.000000 :: ZUCOM X :: hello", ZuLoggerBase::toLineString("ZUCOM", "0001.000000", " X", "hello"));
    EXPECT_EQ(" ::  :: ", ZuLoggerBase::toLineString("", "", "", ""));
    EXPECT_EQ("", ZuLoggerBase::byteArrayLogString({}));
    EXPECT_EQ("0A", ZuLoggerBase::byteArrayLogString({0x0A}));
    EXPECT_EQ("02 AB 0F", ZuLoggerBase::byteArrayLogString({0x02, 0xAB, 0x0F}));
    EXPECT_EQ("AZ09[`{\xE4", ZuLoggerBase::toUpperString("az09[`{\xE4"));
}

TEST(LogLine, namesTheFunctionOfASignature)
{
    const std::pair<const char*, const char*> cases[] = {
        {"int ZucomPort::transmit(const uint8_t*, size_t)", "ZucomPort::transmit"},
        {"ZucomPort::ZucomPort(const char*)", "ZucomPort::ZucomPort"},
        {"static int a::b(void (*)(int))", "a::b"},
        {"int operator ()(int)", ""},
        {"(", ""},
        {"", ""},
        {"no bracket", ""},
    };
    for (const auto& [signature, function] : cases)
        EXPECT_EQ(function, ZuLoggerBase::classFunction(std::stringstream(signature))) << signature;
}

// The time texts of a process in the zone of central Europe, where summer time begins on 29 March 2026 at 01:00 UTC.
std::string timesOf(const char* entries, const std::vector<int64_t>& moments)
{
    return LogRun(
               [&]
               {
                   ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
                   ::tzset();
                   configure(std::string("[OUTPUTTER]\n") + entries);
                   g_loggerTimeRef.startTime_usec = 1000000000000000;
                   const ProbeLogger logger(1);
                   std::string texts;
                   for (const int64_t moment : moments)
                   {
                       interposed::clockTime = moment;
                       texts += logger.currentLogTime() + "\n";
                   }
                   return texts;
               })
        .result;
}

TEST(LogTime, isLocalDateAndTimeAlsoWhenTheClockIsPutForwardOrBack)
{
    EXPECT_EQ("2026.03.29-01.59.59.999999\n2026.03.29-03.00.00.000000\n" // spring forward
              "2026.10.25-02.59.59.000001\n2026.10.25-02.00.00.120000\n" // autumn back
              "2026.10.25-02.00.00.999999\n2026.03.29-01.59.59.000000\n" // the same second, and a clock set back
              "1970.01.01-01.00.00.000000\n",
              timesOf("", {1774745999999999, 1774746000000000, 1792889999000001, 1792890000120000, 1792890000999999,
                           1774745999000000, 0}));
}

TEST(LogTime, canCountFromTheLoadOfTheLibrary)
{
    const int64_t load = 1000000000000000;
    EXPECT_EQ("0000.000000\n0000.000001\n0003.500000\n0012.000345\n9999.999999\n10000.000000\n1234567.000000\n",
              timesOf("logreltime=on", {load, load + 1, load + 3500000, load + 12000345, load + 9999999999,
                                        load + 10000000000, load + 1234567000000}));
}

TEST(LogTime, followsAChangeOfTheTimeZone)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\n");
            const ProbeLogger logger(1);
            std::string texts;
            for (const char* zone : {"UTC0", "XXX-5:30", "YYY8"})
            {
                ::setenv("TZ", zone, 1);
                ::tzset();
                interposed::clockTime = 1767225600000000 + static_cast<int64_t>(texts.size()) * 1000000;
                texts += logger.currentLogTime() + "\n";
            }
            return texts;
        });
    EXPECT_EQ("2026.01.01-00.00.00.000000\n2026.01.01-05.30.27.000000\n2025.12.31-16.00.54.000000\n", run.result);
}
} // namespace
