// Round moments on a time axis and how they are written.
#ifndef ZUCOM_TOOLS_TIME_SCALE_H
#define ZUCOM_TOOLS_TIME_SCALE_H

#include <cstdint>
#include <string>
#include <vector>

class TimeScale
{
public:
    // From begin to end, in us. Dates count since 1970; other times from the load of the library.
    TimeScale(std::int64_t begin, std::int64_t end, bool absolute);

    std::vector<std::int64_t> ticks(std::size_t atMost) const; // round moments, at most that many
    std::string tickText(std::int64_t time) const;             // as exact as the ticks are apart
    std::string text(std::int64_t time) const;                 // to the millisecond
    std::string title() const;                                 // what the axis shows

private:
    std::int64_t step(std::size_t atMost) const;

    std::int64_t begin_;
    std::int64_t end_;
    bool absolute_;
    std::int64_t shownStep_;
};

#endif
