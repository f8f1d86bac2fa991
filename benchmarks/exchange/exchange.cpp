// What does an exchange with a reader cost beside the bare system calls, and beside other libraries?
//
//   zucom-bench-exchange ROUNDS                   every contender in turns, processor time of the caller
//   zucom-bench-exchange CONTENDER ANSWER COUNT   so many exchanges and nothing else, for callgrind and strace
#include "benchmarks/exchange/contender.h"

#include <cstdlib>
#include <cstring>
#include <iostream>

#include "benchmarks/support/pairedRun.h"
#include "benchmarks/support/ptyReader.h"

namespace
{
const Contender* const contenders[] = {&barePoll,       &bareSelect,   &zucomExchange,
                                       &modbusExchange, &asioExchange, &serialportExchange};

struct Size
{
    std::size_t answer;
    int exchanges; // in one turn
};
constexpr Size sizes[] = {{6, 400}, {250, 400}, {32000, 40}};

/** A contender's line with its own reader at the other end. */
struct Bench
{
    Bench(const Contender& contender, const Talk& talk)
        : reader(talk.request.size(), talk.answer), line(contender.open(reader.path(), talk))
    {
        reader.resetLine();
    }

    void exchange(int count) const
    {
        for (int i = 0; i < count; ++i)
            line->run();
    }

    PtyReader reader;
    std::unique_ptr<Exchange> line;
};

void compare(const Size& size, int rounds)
{
    PairedRun run;
    std::vector<std::string> names;
    for (const Contender* contender : contenders)
    {
        const Talk talk = contender->talk(size.answer);
        if (talk.answer.empty())
            continue;
        names.emplace_back(contender->name);
        run.add(contender->name, [&size, bench = std::make_shared<Bench>(*contender, talk)]
                { return timed(CLOCK_THREAD_CPUTIME_ID, [&] { bench->exchange(size.exchanges); }); });
    }
    run.run(rounds);
    for (const std::string& name : names)
    {
        const std::string key = "exchange." + std::to_string(size.answer) + "." + name;
        report(key + ".beside-poll", run.ratio(name, "poll"));
        report(key + ".beside-select", run.ratio(name, "select"));
        report(key + ".us", run.cost(name) / size.exchanges / 1000);
    }
}

void runAlone(const char* name, std::size_t answerLength, int count)
{
    for (const Contender* contender : contenders)
        if (std::strcmp(contender->name, name) == 0)
            return Bench(*contender, contender->talk(answerLength)).exchange(count);
    throw std::invalid_argument("no such contender");
}
} // namespace

Talk readerTalk(std::size_t answerLength) { return {readerFrame(6), readerFrame(answerLength)}; }

int main(int argc, char** argv)
try
{
    if (argc == 2)
        for (const Size& size : sizes)
            compare(size, std::atoi(argv[1]));
    else if (argc == 4)
        runAlone(argv[1], std::strtoul(argv[2], nullptr, 10), std::atoi(argv[3]));
    else
        return 2;
    return 0;
}
catch (const std::exception& failure)
{
    std::cerr << "zucom-bench-exchange: " << failure.what() << '\n';
    return 1;
}
