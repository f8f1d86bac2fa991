// One port on the time axis: what happened in each column, and the totals.
#ifndef ZUCOM_TOOLS_LANE_H
#define ZUCOM_TOOLS_LANE_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "tools/timeline/answerTimes.h"

// What can happen at a moment. The order is that of the tables that draw them.
enum EventKind
{
    eventTransmit,
    eventAnswer,
    eventTimeout,
    eventBroken, // bytes came, but no whole frame
    eventError,  // any other line with the mark " ERROR"
    eventKinds,
};

// What is waited for while a request is out; what is left of the time are the gaps between exchanges.
enum WaitKind
{
    waitAnswered,
    waitTimedOut,
    waitFailed, // ended by a broken answer or another error
    waitKinds,
};

struct Column
{
    std::uint64_t events[eventKinds] = {};
    std::int64_t waited[waitKinds] = {}; // us

    void add(const Column& other);
};

// Columns are numbered by time divided by their width, so that two neighbours join when the width doubles.
class Lane
{
public:
    Lane(std::uint32_t firstPort, bool pairs) : port(firstPort), pairs_(pairs) {}

    void transmit(std::int64_t time, std::int64_t width);
    void receive(std::int64_t time); // a wait that may have no transmit before it
    void finish(std::int64_t time, std::int64_t width, EventKind kind);
    void count(std::int64_t time, std::int64_t width, EventKind kind); // an event that ends no wait
    void forgetOpenEnds(); // what comes next does not continue what came before

    void doubleWidth();

    std::uint32_t port;        // the latest handle
    std::string device;        // empty while unknown
    bool closed = false;       // the handle is not in use any more
    std::string request;       // beginning of the dump of the latest transmit
    std::int64_t lastTime = 0; // us; the lane's time never runs back
    Column total;
    AnswerTimes answerTimes;
    std::uint64_t gaps = 0;
    std::int64_t gapTime = 0; // us
    std::int64_t longestGap = 0;
    std::int64_t longestGapAt = 0;
    std::map<std::int64_t, Column> columns;

private:
    void wait(std::int64_t from, std::int64_t to, std::int64_t width, WaitKind kind);

    bool pairs_; // lines belong to one port, so that an answer belongs to the transmit before it
    bool transmitted_ = false;
    std::optional<std::int64_t> waitingSince_;
    std::optional<std::int64_t> idleSince_;
};

#endif
