// Round moments on a time axis and how they are written.
#include "tools/timeline/timeScale.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>

namespace
{

constexpr std::int64_t second = 1000000;
constexpr std::int64_t minute = 60 * second;
constexpr std::int64_t hour = 60 * minute;
constexpr std::int64_t day = 24 * hour;
constexpr std::size_t ticksWanted = 10;

constexpr std::int64_t roundSteps[] = {
    1,           2,           5,           10,          20,          50,          100,       200,        500,
    1000,        2000,        5000,        10000,       20000,       50000,       100000,    200000,     500000,
    second,      2 * second,  5 * second,  10 * second, 15 * second, 30 * second, minute,    2 * minute, 5 * minute,
    10 * minute, 15 * minute, 30 * minute, hour,        2 * hour,    3 * hour,    6 * hour,  12 * hour,  day,
    2 * day,     5 * day,     10 * day,    20 * day,    50 * day,    100 * day,   200 * day, 365 * day,
};

std::string dateText(std::int64_t time)
{
    const std::chrono::sys_days date(std::chrono::days(time / day));
    const std::chrono::year_month_day parts(date);
    return fmt::format("{:04}.{:02}.{:02}", static_cast<int>(parts.year()), static_cast<unsigned>(parts.month()),
                       static_cast<unsigned>(parts.day()));
}

std::string clockText(std::int64_t time) // hours and minutes
{
    return fmt::format("{:02}:{:02}", time % day / hour, time % hour / minute);
}

std::string fractionText(std::int64_t micro, std::int64_t step) // as many digits as the step has
{
    int digits = 6;
    while (digits > 0 && step % 10 == 0)
    {
        step /= 10;
        micro /= 10;
        --digits;
    }
    return digits == 0 ? std::string() : fmt::format(".{:0{}}", micro, digits);
}

} // namespace

TimeScale::TimeScale(std::int64_t begin, std::int64_t end, bool absolute)
    : begin_(begin), end_(std::max(end, begin + 1)), absolute_(absolute), shownStep_(step(ticksWanted))
{
}

std::vector<std::int64_t> TimeScale::ticks(std::size_t atMost) const
{
    const std::int64_t apart = step(atMost);
    std::vector<std::int64_t> result;
    for (std::int64_t tick = (begin_ + apart - 1) / apart * apart; tick <= end_; tick += apart)
        result.push_back(tick);
    return result;
}

std::string TimeScale::tickText(std::int64_t time) const
{
    const std::string fraction = fractionText(time % second, std::min(shownStep_, second));
    if (!absolute_)
        return fmt::format("{}{} s", time / second, fraction);
    if (shownStep_ >= day)
        return dateText(time);
    if (shownStep_ >= minute)
        return end_ - begin_ > day ? dateText(time).substr(5) + " " + clockText(time) : clockText(time);
    return fmt::format("{}:{:02}{}", clockText(time), time % minute / second, fraction);
}

std::string TimeScale::text(std::int64_t time) const
{
    const std::string millis = fractionText(time % second, 1000);
    if (!absolute_)
        return fmt::format("{}{} s", time / second, millis);
    return fmt::format("{} {}:{:02}{}", dateText(time), clockText(time), time % minute / second, millis);
}

std::string TimeScale::title() const
{
    return absolute_ ? fmt::format("local time, from {}", text(begin_)) : "seconds since the library was loaded";
}

std::int64_t TimeScale::step(std::size_t atMost) const
{
    const std::int64_t range = end_ - begin_;
    for (const std::int64_t candidate : roundSteps)
        if (range / candidate < static_cast<std::int64_t>(atMost))
            return candidate;
    const std::int64_t years = range / (365 * day) / static_cast<std::int64_t>(atMost) + 1;
    return years * 365 * day;
}
