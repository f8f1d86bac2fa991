#include "tests/support/logCapture.h"

#include <cstdlib>
#include <mutex>
#include <regex>

#include <gtest/gtest.h>
#include <pthread.h>

#include <zucom/zuLoggerGlobal.h>

namespace
{

std::mutex capturedMutex;
std::vector<std::string> captured; // guarded by capturedMutex; the thread and "|" in front of each line

void capture(void*, const char* line)
{
    const std::lock_guard lock(capturedMutex);
    captured.push_back(std::to_string(pthread_self()) + '|' + line);
}

std::string setting()
{
    const char* value = std::getenv("ZUCOM_TEST_LOG");
    return value ? value : "both";
}

void presetOnce()
{
    static const bool done = []
    {
        const std::string config = std::string("[ZUCOM]\nlogtrace=") + (LogCapture::trace() ? "on" : "off") +
                                   "\nlogerror=" + (LogCapture::error() ? "on" : "off") + '\n';
        ZuLoggerGlobal::presetConfig(config.c_str());
        ZuLoggerGlobal::presetCallback(nullptr, capture);
        return true;
    }();
    static_cast<void>(done);
}

std::string shortForm(const std::string& line)
{
    static const std::regex form(
        R"((\d+)\|\d{4}\.\d\d\.\d\d-\d\d\.\d\d\.\d\d\.\d{6} :: ZUCOM PH=0x[1-9a-f][0-9a-f]* TID=(\d+) )"
        R"(ZucomPort::(\w+:\d+(?: ERROR)? :: [\s\S]*))");
    std::smatch part;
    if (!std::regex_match(line, part, form))
    {
        ADD_FAILURE() << "log line without the usual form: " << line;
        return line;
    }
    EXPECT_EQ(part.str(1), part.str(2)) << "thread identifier in " << line;
    return part.str(3);
}

} // namespace

bool LogCapture::trace() { return setting() == "both" || setting() == "trace"; }

bool LogCapture::error() { return setting() == "both" || setting() == "error"; }

LogCapture::LogCapture()
{
    presetOnce();
    clear();
}

LogCapture::~LogCapture()
{
    for (const std::string& line : take())
        EXPECT_EQ(std::string::npos, line.find(" ERROR :: ")) << "unexpected error line: " << line;
}

std::vector<std::string> LogCapture::take()
{
    std::vector<std::string> lines;
    {
        const std::lock_guard lock(capturedMutex);
        lines.swap(captured);
    }
    for (std::string& line : lines)
        line = shortForm(line);
    return lines;
}

void LogCapture::clear()
{
    const std::lock_guard lock(capturedMutex);
    captured.clear();
}
