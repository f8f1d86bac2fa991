// The port logger: its conditions, the dump, and whole configurations.

#include <zucom/zucomLogger.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/logger/collector.h"
#include "tests/logger/logRun.h"

#include <gtest/gtest.h>

namespace
{
TEST(LogConditions, followTheLastEntryOfEachKey)
{
    const std::pair<const char*, uint32_t> cases[] = {
        {"[ZUCOM]\nlogtrace=on", 0x00000001},
        {"[ZUCOM]\nlogerror=on", 0x80000000},
        {"[ZUCOM]\nlogtrace=on\nlogerror=on\n", 0x80000001},
        {"[ZUCOM]\nLogTrace = On\n", 0x00000001},
        {"[ZUCOM]\nlogtrace\nlogerror=\n", 0x80000001},
        {"[ZUCOM]\nlogtrace=on\nlogtrace=off", 0},
        {"[ZUCOM]\nlogerror=0\nlogerror=on", 0x80000000},
        {"[ZUCOM]\nlogtrace=on\nlogerror=on\nlogtrace=0", 0x80000000},
        {"[ZUCOM]\nlogdebug=on\ntrace=on", 0},
        {"[OUTPUTTER]\nlogtrace=on\n[zucom]\nlogtrace=on", 0},
        {"[OUTPUTTER]\nlogconsole=on", 0},
    };
    for (const auto& [text, conditions] : cases)
    {
        const LogRun run(
            [text = text]
            {
                configure(text);
                return std::to_string(ProbeLogger(1).logConditions);
            });
        EXPECT_EQ(std::to_string(conditions), run.result) << text;
    }
}

TEST(LogConditions, keepWhatATextDoesNotName)
{
    const LogRun run(
        []
        {
            configure("[ZUCOM]\nlogtrace=on\n");
            ProbeLogger logger(1);
            logger.setLogConditions("logerror=on;LOGTRACE", ';');
            const uint32_t both = logger.logConditions;
            logger.setLogConditions("logtrace=off", ';');
            logger.setLogConditions("", ';');
            return std::to_string(both) + " " + std::to_string(logger.logConditions);
        });
    EXPECT_EQ("2147483649 2147483648", run.result);
}

TEST(FrameDump, isLowerCaseWithABlankBehindEachByte)
{
    const uint8_t bytes[] = {0x02, 0x00, 0x07, 0xFF, 0x0A};
    EXPECT_EQ("02 00 07 ff 0a ", ZucomLogger::printProt(bytes, sizeof bytes));
    EXPECT_EQ("0a ", ZucomLogger::printProt(bytes + 4, 1));
    EXPECT_EQ("", ZucomLogger::printProt(bytes, 0));
    EXPECT_EQ("", ZucomLogger::printProt(nullptr, 0));
}

TEST(SampleConfiguration, givesTheFilesAndDatagramsItAsksFor)
{
    const LogRun run(
        []
        {
            const Collector collector("127.0.0.1");
            const std::string entries = collector.configuration(); // "logudpaddr=127.0.0.1\nlogudpport=…\n"
            std::filesystem::create_directory("readers");
            std::ofstream("mirn.conf") << "[OUTPUTTER]\nlogpath = readers\nlogfile = portlog\nlogfileperreader = on\n"
                                          "logreltime = on\n"
                                       << entries << "[ZUCOM]\nlogtrace = on\nlogerror = on\n";
            ::setenv("MIRN_LOGGER_CONGIG_FILE", "mirn.conf", 1);
            ProbeLogger logger(1);
            logger.write("a");
            logger.write("b");
            std::string seen = logger.settings().substr(0, 47) + "\n" + std::to_string(logger.logConditions) + "\n";
            for (const auto& file : std::filesystem::directory_iterator("readers"))
                seen += file.path().string() + "\n" + contentOf(file.path());
            seen += collector.receive(2);
            return seen + collector.receiveWaiting();
        });
    const std::string lines = "T :: ZUCOM L :: a\nT :: ZUCOM L :: b\n";
    EXPECT_EQ("rel own readers/portlog-ZUCOM-RH1.log 127.0.0.1\n2147483649\nreaders/portlog-ZUCOM-RH1.log\n" +
                  fileHeader + lines + lines,
              run.result);
    EXPECT_EQ("", run.console);
}

// docs/mirn.conf as it is, and with the remark sign taken off every key that it offers.
TEST(ExampleConfiguration, readsAsItsRemarksSay)
{
    const std::string shipped = contentOf(ZUCOM_SOURCE_DIR "/docs/mirn.conf");
    const std::pair<std::string, const char*> cases[] = {
        {shipped, "2147483648 abs own /var/log/readers/portlog-ZUCOM-RH1.log"},
        {std::regex_replace(shipped, std::regex("\n#([a-z])"), "\n$1"),
         "2147483649 abs console shared logcat /var/log/readers/portlog-ZUCOM.log 127.0.0.1:4711"},
    };
    for (const auto& [text, settings] : cases)
    {
        const LogRun run(
            [text = text]
            {
                configure(text);
                const ProbeLogger logger(1);
                return std::to_string(logger.logConditions) + " " + logger.settings();
            });
        EXPECT_EQ(settings, run.result);
    }
}
} // namespace
