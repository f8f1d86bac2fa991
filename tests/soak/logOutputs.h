/**
 * @file
 * Every output of the loggers at once, each line counted and looked at.
 */
#ifndef TESTS_SOAK_LOG_OUTPUTS_H
#define TESTS_SOAK_LOG_OUTPUTS_H

#include <atomic>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/**
 * From construction on the loggers write to files, the console, a datagram socket and the callback. Construct one,
 * before the first port; it stays until the process ends.
 */
class LogOutputs
{
public:
    /** @param folder Where files and the socket are made. @param kindOfFile "logfileshared" or "logfileperreader". */
    LogOutputs(const std::string& folder, const std::string& kindOfFile);
    LogOutputs(const LogOutputs&) = delete;
    LogOutputs& operator=(const LogOutputs&) = delete;

    /** @return Lines since construction. */
    long lines() const { return byCallback_; }

    /** @return The console, for figures: what the process writes to standard output is taken as log lines. */
    std::FILE* console() const { return console_; }

    /**
     * Compares the outputs while no port is open, and removes the files.
     *
     * @return What is wrong: every line must have reached callback, console and files whole; datagrams may be lost.
     */
    std::vector<std::string> compare();

private:
    static void callback(void* self, const char* line);
    void readConsole(int descriptor);
    void readDatagrams(int descriptor);
    void readFiles();
    void count(std::atomic<long>& counter, std::string_view line);

    const std::string folder_;
    std::FILE* console_;
    std::atomic<long> byCallback_ = 0;
    std::atomic<long> byConsole_ = 0;
    std::atomic<long> byDatagram_ = 0;
    std::atomic<long> byFile_ = 0;
    std::atomic<long> torn_ = 0;
};

#endif
