#include "tests/support/logCapture.h"

#include <cstdlib>
#include <mutex>
#include <regex>
#include <utility>

#include <gtest/gtest.h>
#include <pthread.h>

#include <zucom/zuLoggerGlobal.h>

namespace
{

std::mutex capturedMutex;
Lines captured; // guarded by capturedMutex

std::string shortForm(const std::string& line)
{
    static const std::regex location(R"(\d{4}\.\d\d\.\d\d-\d\d\.\d\d\.\d\d\.\d{6} :: ZUCOM PH=0x[1-9a-f][0-9a-f]* )"
                                     R"(TID=(\d+) ZucomPort::(\w+:\d+(?: ERROR)?) :: )");
    std::smatch part;
    if (!std::regex_search(line, part, location, std::regex_constants::match_continuous))
    {
        ADD_FAILURE() << "log line without the usual form: " << line;
        return line;
    }
    EXPECT_EQ(std::to_string(pthread_self()), part.str(1)) << "thread identifier in " << line;
    return part.str(2) + " :: " + part.suffix().str();
}

void capture(void*, const char* line)
{
    std::string text = shortForm(line);
    const std::lock_guard lock(capturedMutex);
    captured.push_back(std::move(text));
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

} // namespace

bool LogCapture::trace() { return setting() == "both" || setting() == "trace"; }

bool LogCapture::error() { return setting() == "both" || setting() == "error"; }

LogCapture::LogCapture()
{
    presetOnce();
    take();
}

LogCapture::~LogCapture()
{
    for (const std::string& line : take())
        EXPECT_EQ(std::string::npos, line.find(" ERROR :: ")) << "unexpected error line: " << line;
}

Lines LogCapture::take()
{
    const std::lock_guard lock(capturedMutex);
    return std::exchange(captured, {});
}

void LogCapture::putBack(Lines lines)
{
    const std::lock_guard lock(capturedMutex);
    captured = std::move(lines);
}

Lines LogCapture::visible(Lines lines)
{
    static const std::regex errorCondition(R"(\w+:(?:\d+ ERROR|97|491|518) :: )");
    std::erase_if(lines,
                  [](const std::string& line) {
                      return std::regex_search(line, errorCondition, std::regex_constants::match_continuous) ? !error()
                                                                                                             : !trace();
                  });
    return lines;
}
