// One way to exchange a request and its answer with a reader.
#ifndef BENCHMARKS_CONTENDER_H
#define BENCHMARKS_CONTENDER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/** An open line. */
class Exchange
{
public:
    virtual ~Exchange() = default;
    /** Sends the request and takes the whole answer. */
    virtual void run() = 0;

protected:
    /** A contender that does not do the work does not count. */
    static void expect(bool done)
    {
        if (!done)
            throw std::runtime_error("an exchange went wrong");
    }
};

/** What goes over the line. */
struct Talk
{
    std::vector<uint8_t> request;
    std::vector<uint8_t> answer;
};

struct Contender
{
    const char* name;
    /** What is said for an answer of that many bytes; empty when this contender has no answer of that length. */
    Talk (*talk)(std::size_t answerLength);
    std::unique_ptr<Exchange> (*open)(const std::string& path, const Talk& talk);
};

/** Reader frames in both directions. */
Talk readerTalk(std::size_t answerLength);

/** Room for an answer, as an application that knows nothing of its length has it. */
constexpr std::size_t callerBuffer = 40000;

extern const Contender barePoll;
extern const Contender bareSelect;
extern const Contender zucomExchange;
extern const Contender modbusExchange;
extern const Contender asioExchange;
extern const Contender serialportExchange;

#endif
