// Many threads and processes on the same outputs: lines stay whole, nothing is lost, nothing waits for ever.

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "tests/logger/collector.h"
#include "tests/logger/logRun.h"

#include <gtest/gtest.h>

namespace
{
constexpr int threadCount = 8;
constexpr int linesPerThread = 5000;

std::string messageOf(int writer, int line)
{
    return "writer " + std::to_string(writer) + " line " + std::to_string(line) + " " +
           std::string(static_cast<std::size_t>(line * 37 % 200), static_cast<char>('a' + writer)) + " end";
}

std::vector<std::string> sorted(std::vector<std::string> lines)
{
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> expectedLines(int firstWriter, int writers, int lines)
{
    std::vector<std::string> all;
    for (int writer = firstWriter; writer < firstWriter + writers; ++writer)
        for (int line = 0; line < lines; ++line)
            all.push_back("T :: ZUCOM L :: " + messageOf(writer, line));
    return sorted(all);
}

// Removes the header wherever a process or a logger wrote it. @return How often.
int takeHeaders(std::string& content)
{
    int count = 0;
    for (std::size_t at; (at = content.find(fileHeader)) != std::string::npos; ++count)
        content.erase(at, fileHeader.size());
    return count;
}

void runThreads(const std::function<void(int)>& body)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back(body, i);
    for (std::thread& thread : threads)
        thread.join();
}

// Takes datagrams while the loggers write; what it cannot keep up with is lost, but what arrives is whole.
class ReadingCollector
{
public:
    ReadingCollector() : collector_(std::filesystem::current_path() / "collector"), thread_([this] { read(); }) {}
    std::string configuration() const { return collector_.configuration(); }

    /** @return How many datagrams arrived, or a text that no line equals. */
    std::string finish()
    {
        done_ = true;
        thread_.join();
        const std::vector<std::string> expected = expectedLines(0, threadCount, linesPerThread);
        const std::vector<std::string> lines = sorted(std::move(lines_));
        const bool whole = std::includes(expected.begin(), expected.end(), lines.begin(), lines.end());
        return lines.empty() ? "no datagram" : whole ? "datagrams whole" : "datagrams torn or doubled";
    }

private:
    void read()
    {
        for (std::string datagram; !done_ || !datagram.empty();)
        {
            datagram = collector_.receiveWaiting();
            if (datagram.empty())
                std::this_thread::yield();
            else
                lines_.push_back(datagram.substr(0, datagram.size() - (datagram.back() == '\n' ? 1 : 0)));
        }
    }

    const Collector collector_;
    std::atomic<bool> done_ = false;
    std::vector<std::string> lines_;
    std::thread thread_;
};

TEST(Lines, ofEightThreadsStayWholeInTheSharedFileAndEveryOtherOutput)
{
    const LogRun run(
        []
        {
            ReadingCollector collector;
            configure("[OUTPUTTER]\nlogfile=f\nlogfileshared=on\nlogconsole=on\n" + collector.configuration());
            collectCallbacks();
            ProbeLogger common(0); // used by all, beside one logger for each thread
            runThreads(
                [&](int thread)
                {
                    ProbeLogger own(thread + 1);
                    for (int line = 0; line < linesPerThread; ++line)
                        (line % 2 == 0 ? own : common).write(messageOf(thread, line));
                });
            const bool called = sorted(linesOf(calledBack())) == expectedLines(0, threadCount, linesPerThread);
            return collector.finish() + (called ? ", callback complete" : ", callback incomplete");
        });
    EXPECT_EQ("datagrams whole, callback complete", run.result);
    const std::vector<std::string> expected = expectedLines(0, threadCount, linesPerThread);
    ASSERT_EQ(1U, run.files.size());
    std::string content = run.files.at("f-ZUCOM.log");
    EXPECT_EQ(0U, content.find(fileHeader));
    EXPECT_EQ(1, takeHeaders(content));
    EXPECT_TRUE(expected == sorted(linesOf(content)));
    EXPECT_TRUE(expected == sorted(linesOf(run.console)));
}

TEST(Lines, ofEightThreadsStayWholeInOwnFiles)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileperreader=on\n");
            // Each logger is used by two threads.
            std::vector<std::unique_ptr<ProbeLogger>> loggers;
            for (int i = 0; i < threadCount / 2; ++i)
                loggers.push_back(std::make_unique<ProbeLogger>(i));
            runThreads(
                [&](int thread)
                {
                    for (int line = 0; line < linesPerThread; ++line)
                        loggers[static_cast<std::size_t>(thread / 2)]->write(messageOf(thread, line));
                });
            return "";
        });
    ASSERT_EQ(std::size_t{threadCount / 2}, run.files.size());
    for (int i = 0; i < threadCount / 2; ++i)
    {
        std::string content = run.files.at("f-ZUCOM-RH" + std::to_string(i) + ".log");
        EXPECT_EQ(0U, content.find(fileHeader));
        EXPECT_EQ(1, takeHeaders(content));
        EXPECT_TRUE(expectedLines(2 * i, 2, linesPerThread) == sorted(linesOf(content))) << i;
    }
}

TEST(Lines, ofTwoProcessesStayWholeInOneFile)
{
    const LogRun run(
        []
        {
            configure("[OUTPUTTER]\nlogfile=f\nlogfileshared=on\n");
            const pid_t other = ::fork();
            ProbeLogger logger(1);
            for (int line = 0; line < linesPerThread; ++line)
                logger.write(messageOf(other == 0, line));
            if (other == 0)
                ::_exit(0);
            ::waitpid(other, nullptr, 0);
            return "";
        });
    std::string content = run.files.at("f-ZUCOM.log");
    EXPECT_EQ(2, takeHeaders(content));
    EXPECT_TRUE(expectedLines(0, 2, linesPerThread) == sorted(linesOf(content)));
}

// A callback that does not return before a line of another logger has gone through every output.
struct Meeting
{
    std::mutex mutex;
    std::condition_variable changed;
    int lines = 0;

    void callback()
    {
        std::unique_lock lock(mutex);
        ++lines;
        changed.notify_all();
        changed.wait(lock, [this] { return lines >= 2; });
    }
};

TEST(Callback, thatWaitsHoldsNoOtherLogger)
{
    for (const char* kind : {"logfileshared=on\n", "logfileperreader=on\n"})
    {
        const LogRun run(
            [&]
            {
                static Meeting meeting;
                ZuLoggerGlobal::presetCallback(nullptr, [](void*, const char*) { meeting.callback(); });
                configure(std::string("[OUTPUTTER]\nlogconsole=on\nlogfile=f\n") + kind);
                ProbeLogger common(1);
                std::thread first([&] { common.write("a"); });
                std::thread second([&] { common.write("b"); });
                first.join();
                second.join();
                return std::to_string(meeting.lines);
            });
        EXPECT_EQ("2", run.result);
    }
}

TEST(Callback, mayLogThroughAnotherLogger)
{
    for (const char* kind : {"logfileshared=on\n", "logfileperreader=on\n"})
    {
        const LogRun run(
            [&]
            {
                static ProbeLogger* other;
                static std::string seen;
                ZuLoggerGlobal::presetCallback(nullptr,
                                               [](void*, const char* line)
                                               {
                                                   seen += line + std::string(";");
                                                   if (std::string(line).find("outer") != std::string::npos)
                                                       other->write("inner");
                                               });
                configure(std::string("[OUTPUTTER]\nlogconsole=on\nlogfile=f\n") + kind);
                ProbeLogger logger(1);
                ProbeLogger second(2);
                other = &second;
                logger.write("outer");
                return seen;
            });
        EXPECT_EQ("T :: ZUCOM L :: outer;T :: ZUCOM L :: inner;", run.result);
        EXPECT_EQ("T :: ZUCOM L :: outer\nT :: ZUCOM L :: inner\n", run.console);
    }
}
} // namespace
