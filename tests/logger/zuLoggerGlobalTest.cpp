// Where the configuration comes from, malformed configurations, and what all loggers share.

#include <zucom/zuLoggerGlobal.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include <unistd.h>

#include "tests/logger/interposed.h"
#include "tests/logger/logRun.h"

#include <gtest/gtest.h>

namespace
{
// The settings of a logger in a process of its own.
std::string settingsWith(const std::string& preset)
{
    return LogRun(
               [&]
               {
                   configure(preset);
                   return ProbeLogger(1).settings();
               })
        .result;
}

TEST(ConfigurationSource, isPresetThenEnvironmentThenSystem)
{
    // Each source switches something else on.
    const std::string preset = "[OUTPUTTER]\nlogreltime=on\n";
    const std::string console = "[OUTPUTTER]\nlogconsole=on\n";
    const std::string logCat = "[OUTPUTTER]\nandroidlogcat=on\n";
    struct Case
    {
        const char* name;
        std::string preset;
        std::optional<std::string> environment; // a path
        std::string settings;
    };
    const Case cases[] = {
        {"preset only", preset, {}, "rel"},
        {"preset before all", preset, "console.conf", "rel"},
        {"environment", "", "console.conf", "abs console"},
        {"system", "", {}, "abs logcat"},
        {"empty variable is a path too", "", "", "abs"},
        {"missing file", "", "missing.conf", "abs"},
        {"directory", "", ".", "abs"},
        {"below a file", "", "console.conf/below", "abs"},
        {"opens but cannot be read", "", "/proc/self/mem", "abs"},
        {"empty file", "", "/dev/null", "abs"},
    };
    for (const Case& c : cases)
    {
        const LogRun run(
            [&]
            {
                std::ofstream("console.conf") << console;
                std::ofstream("system.conf") << logCat;
                interposed::systemConfigFile = "system.conf";
                if (c.environment)
                    ::setenv("MIRN_LOGGER_CONGIG_FILE", c.environment->c_str(), 1);
                configure(c.preset);
                return ProbeLogger(1).settings();
            });
        EXPECT_EQ(c.settings, run.result) << c.name;
    }
}

TEST(ConfigurationSource, isReadOnceAndThePresetIsTakenOver)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogconsole=on\n");
            collectCallbacks();
            ProbeLogger first(1);
            const bool cleared = g_loggerPreset.presetText.empty() && !g_loggerPreset.presetCallbackFunction;
            configure("[OUTPUTTER]\nlogreltime=on\n");
            ZuLoggerGlobal::presetCallback(nullptr, nullptr);
            ProbeLogger later(2);
            first.setOutPutterParameter();
            later.write("x");
            return first.settings() + ", " + later.settings() + (cleared ? ", cleared, " : ", ") + calledBack();
        });
    EXPECT_EQ("abs console, abs console, cleared, T :: ZUCOM L :: x\n", run.result);
}

TEST(ConfigurationSource, canBePresetAgainBeforeTheFirstLogger)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogconsole=on\n");
            ZuLoggerGlobal::presetConfig(nullptr);
            const bool cleared = g_loggerPreset.presetText.empty();
            configure("[OUTPUTTER]\nlogreltime=on\n");
            return std::to_string(cleared) + ProbeLogger(1).settings();
        });
    EXPECT_EQ("1rel", run.result);
}

TEST(ConfigurationSource, thatIsMissingSwitchesEverythingOff)
{
    const LogRun run(
        []
        {
            interposed::systemConfigFile = "missing.conf";
            ProbeLogger logger(1);
            logger.write("x");
            return logger.settings() + " " + std::to_string(logger.logConditions);
        });
    EXPECT_EQ("abs 0", run.result);
    EXPECT_EQ("", run.console);
    EXPECT_TRUE(run.files.empty());
}

TEST(ConfigurationText, ofAnyFormFollowsTheRulesOfParameterText)
{
    const std::string megabyte(1 << 20, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"[OUTPUTTER", "abs"},
        {"[OUTPUTTER\nlogconsole=on", "abs"},
        {"[outputter]\nlogconsole=on", "abs"},
        {"[OUTPUTTER]\nlogconsole=on", "abs console"},
        {"[OUTPUTTER]logconsole=on", "abs console"},
        {"[OUTPUTTER]\r\nlogconsole=off\r\nlogreltime=on\r\n", "rel"},
        {"log[OUTPUTTER]\nlogconsole=on\n[ZUCOM]\nlogreltime=on", "abs console"},
        {"[OUTPUTTER]\n[OUTPUTTER]\nlogconsole=on", "abs"},
        {"[OUTPUTTER]\nlogreltime=on\n[OUTPUTTER]\nlogconsole=on", "rel"},
        {"[OUTPUTTER]\nlogreltime=[\nlogconsole=on", "rel"},
        {"[OUTPUTTER]\n\x01logconsole=on\nlogreltime\x02=on\nandroidlogcat", "abs logcat"},
        {"[OUTPUTTER]\nlogfileshared=on\nlogfile=\"open\nlogconsole=on", "abs shared ./open\nlogconsole=on-ZUCOM.log"},
        {"[OUTPUTTER]\nlogfileshared=on\nlogfile=\" a \"b\"=\" c", "abs shared ./ a b=c-ZUCOM.log"},
        {"[OUTPUTTER]\n" + megabyte + "\n" + megabyte + "=" + megabyte + "\nlogconsole=on\n", "abs console"},
        {"[OUTPUTTER]\nlogfile=" + megabyte + "\nlogfileshared=on", "abs shared ./" + megabyte + "-ZUCOM.log"},
        {"[OUTPUTTER]\n" + std::string(100000, '\n') + "logconsole", "abs console"},
        {"[" + megabyte, "abs"},
        {"\xff\xfe[OUTPUTTER]\nlogconsole=\xff", "abs console"},
    };
    for (const auto& [text, settings] : cases)
        EXPECT_EQ(settings, settingsWith(text)) << text.substr(0, 100);
}

TEST(ConfigurationText, endsAtAZeroByteOfTheFile)
{
    const LogRun run(
        []
        {
            std::ofstream("zero.conf") << "[OUTPUTTER]\nlogconsole=on\n" << '\0' << "logreltime=on\n";
            ::setenv("MIRN_LOGGER_CONGIG_FILE", "zero.conf", 1);
            return ProbeLogger(1).settings();
        });
    EXPECT_EQ("abs console", run.result);
}

TEST(LoggerGlobal, handsOutSectionsOfTheText)
{
    const LogRun run(
        []
        {
            configure("[A]1[B]2[A]3");
            ZuLoggerGlobal* const global = ZuLoggerGlobal::instance();
            return global->configurationSection("A") + global->configurationSection("B") +
                   global->configurationSection("C") + global->configurationSection("");
        });
    EXPECT_EQ("12", run.result);
}

TEST(LoggerGlobal, isOneForAllThreads)
{
    const LogRun run(
        []
        {
            ZuLoggerGlobal* seen[8] = {};
            std::vector<std::thread> threads;
            for (ZuLoggerGlobal*& instance : seen)
                threads.emplace_back([&instance] { instance = ZuLoggerGlobal::instance(); });
            for (std::thread& thread : threads)
                thread.join();
            return std::to_string(std::count(std::begin(seen), std::end(seen), ZuLoggerGlobal::instance()));
        });
    EXPECT_EQ("8", run.result);
}

TEST(LoggerGlobal, asksForTheSharedHeaderOnce)
{
    const LogRun run(
        []
        {
            std::string pending;
            for (int i = 0; i < 3; ++i)
            {
                pending += ZuLoggerGlobal::instance()->mutexSharedFileLock() ? '1' : '0';
                ZuLoggerGlobal::instance()->mutexSharedFileUnlock();
            }
            return pending + ZuLoggerGlobal::instance()->logHeader() + ZuLoggerGlobal::instance()->getSystemInfo();
        });
    EXPECT_EQ("100Log file of IVRA SDK\n\nOperating System: Linux\n\nOperating System: Linux", run.result);
}

TEST(LoggerGlobal, handsLinesToThePresetCallbackWithItsContext)
{
    const LogRun run(
        []
        {
            static std::string seen;
            ZuLoggerGlobal::presetCallback(&seen, [](void* context, const char* line)
                                           { *static_cast<std::string*>(context) += line; });
            ZuLoggerGlobal::instance()->logCallback("line");
            return seen;
        });
    EXPECT_EQ("line", run.result);
}

TEST(LoggerTimeRef, readsTheWallClock)
{
    interposed::clockTime = 1774745999000001;
    int64_t seconds = -1;
    EXPECT_EQ(1774745999000001, ZuLoggerTimeRef::currentTime_usec(&seconds));
    EXPECT_EQ(1774745999, seconds);
    EXPECT_EQ(1774745999000001, ZuLoggerTimeRef::currentTime_usec());
    const ZuLoggerTimeRef loaded;
    EXPECT_EQ(1774745999000001, loaded.startTime_usec);
    EXPECT_EQ(ZuLoggerBase::dateTimeString(1774745999), loaded.startDateTime);
    interposed::clockTime = -1;
}
} // namespace
