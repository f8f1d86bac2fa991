// What does a trace line into a file cost beside opening the file, writing the same bytes and closing it?
//
//   zucom-bench-log-line FOLDER ROUNDS
#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include <zucom/zuLoggerGlobal.h>
#include <zucom/zucomPort.h>

#include "benchmarks/support/pairedRun.h"

namespace
{
constexpr int operations = 150; // in one turn
constexpr std::size_t threads = 4;

void expect(bool done)
{
    if (!done)
        throw std::runtime_error("an operation went wrong");
}

/** A port whose operation writes some trace lines into its own file, and a file that gets the same lines barely. */
class Pair
{
public:
    Pair(const std::string& folder, std::size_t number)
        : logFile(folder + "/log-ZUCOM-RH" + std::to_string(number) + ".log"),
          bareFile(folder + "/bare-" + std::to_string(number)),
          port("nowhere")
    {
        log(1); // with the header
        expect(truncate(logFile.c_str(), 0) == 0);
        log(1);
        std::ifstream written(logFile);
        for (std::string line; std::getline(written, line);)
            lines.push_back(line + '\n');
        expect(!lines.empty());
        writeBarely(1);
    }

    void empty() const { expect(truncate(logFile.c_str(), 0) == 0 && truncate(bareFile.c_str(), 0) == 0); }

    void log(int count = operations)
    {
        char value[16];
        for (int i = 0; i < count; ++i)
            expect(port.getPortPara("TIMEOUT", value) == 0);
    }

    void writeBarely(int count = operations) const
    {
        for (int i = 0; i < count; ++i)
            for (const std::string& line : lines)
            {
                const int file = open(bareFile.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
                expect(write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size()));
                close(file);
            }
    }

    std::size_t linesPerOperation() const { return lines.size(); }

private:
    const std::string logFile;
    const std::string bareFile;
    ZucomPort port;
    std::vector<std::string> lines;
};

using Pairs = std::array<std::unique_ptr<Pair>, threads>;

void oneThread(Pair& pair, int rounds)
{
    PairedRun run;
    const auto measure = [&](void (*work)(Pair&))
    {
        pair.empty();
        return timed(CLOCK_THREAD_CPUTIME_ID, [&] { work(pair); });
    };
    run.add("bare", [&] { return measure([](Pair& p) { p.writeBarely(); }); });
    run.add("log", [&] { return measure([](Pair& p) { p.log(); }); });
    run.run(rounds);
    const auto lines = static_cast<double>(pair.linesPerOperation() * operations);
    report("log-line.beside-bare", run.ratio("log", "bare"));
    report("log-line.us", run.cost("log") / lines / 1000);
}

void manyThreads(const Pairs& pairs, int rounds)
{
    PairedRun run;
    const auto measure = [&](void (*work)(Pair&))
    {
        for (const auto& pair : pairs)
            pair->empty();
        return timed(CLOCK_MONOTONIC,
                     [&]
                     {
                         std::vector<std::jthread> running;
                         for (const auto& pair : pairs)
                             running.emplace_back([&] { work(*pair); });
                     });
    };
    run.add("bare", [&] { return measure([](Pair& p) { p.writeBarely(); }); });
    run.add("log", [&] { return measure([](Pair& p) { p.log(); }); });
    run.run(rounds);
    report("log-line.4-threads", run.ratio("log", "bare"));
}
} // namespace

int main(int argc, char** argv)
try
{
    if (argc != 3)
        return 2;
    const std::string folder = argv[1];
    const int rounds = std::atoi(argv[2]);
    const std::string configuration =
        "[OUTPUTTER]\nlogpath = \"" + folder + "\"\nlogfile = log\nlogfileperreader = on\n[ZUCOM]\nlogtrace = on\n";
    ZuLoggerGlobal::presetConfig(configuration.c_str());
    Pairs pairs;
    for (std::size_t i = 0; i < threads; ++i)
        pairs[i] = std::make_unique<Pair>(folder, i + 1);
    oneThread(*pairs[0], rounds);
    manyThreads(pairs, rounds);
    return 0;
}
catch (const std::exception& failure)
{
    std::cerr << "zucom-bench-log-line: " << failure.what() << '\n';
    return 1;
}
