// One port on the time axis: what happened in each column, and the totals.
#include "tools/timeline/lane.h"

#include <algorithm>
#include <utility>

void Column::add(const Column& other)
{
    for (int kind = 0; kind < eventKinds; ++kind)
        events[kind] += other.events[kind];
    for (int kind = 0; kind < waitKinds; ++kind)
        waited[kind] += other.waited[kind];
}

void Lane::transmit(std::int64_t time, std::int64_t width)
{
    count(time, width, eventTransmit);
    if (!pairs_)
        return;
    if (idleSince_)
    {
        const std::int64_t gap = time - *idleSince_;
        ++gaps;
        gapTime += gap;
        if (gap > longestGap)
        {
            longestGap = gap;
            longestGapAt = *idleSince_;
        }
    }
    idleSince_.reset();
    waitingSince_ = time;
    transmitted_ = true;
}

void Lane::receive(std::int64_t time)
{
    if (pairs_ && !waitingSince_)
        waitingSince_ = time;
}

void Lane::finish(std::int64_t time, std::int64_t width, EventKind kind)
{
    count(time, width, kind);
    if (!pairs_)
        return;
    if (waitingSince_)
    {
        wait(*waitingSince_, time, width,
             kind == eventAnswer    ? waitAnswered
             : kind == eventTimeout ? waitTimedOut
                                    : waitFailed);
        if (kind == eventAnswer && transmitted_)
            answerTimes.add(time - *waitingSince_);
    }
    waitingSince_.reset();
    transmitted_ = false;
    idleSince_ = time;
}

void Lane::forgetOpenEnds()
{
    waitingSince_.reset();
    idleSince_.reset();
    transmitted_ = false;
}

void Lane::doubleWidth()
{
    std::map<std::int64_t, Column> wider;
    for (const auto& [index, column] : columns)
        wider[index >> 1].add(column);
    columns = std::move(wider);
}

void Lane::count(std::int64_t time, std::int64_t width, EventKind kind)
{
    ++columns[time / width].events[kind];
    ++total.events[kind];
}

// The lane's waits follow each other, so all of them together cross no more columns than there are, plus one each.
void Lane::wait(std::int64_t from, std::int64_t to, std::int64_t width, WaitKind kind)
{
    total.waited[kind] += to - from;
    for (std::int64_t index = from / width; from < to; ++index)
    {
        const std::int64_t end = std::min(to, (index + 1) * width);
        columns[index].waited[kind] += end - from;
        from = end;
    }
}
