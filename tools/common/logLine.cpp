// A line that the library's logger wrote, taken apart again.
#include "tools/common/logLine.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>

#include <fmt/format.h>

namespace
{

constexpr std::string_view separator = " :: ";
constexpr std::string_view headerLines[] = {"", "Log file of IVRA SDK", "Operating System: Linux"};

// Reads the parts of a text from left to right; after the first part that does not fit, everything fails.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool literal(std::string_view expected)
    {
        good_ = good_ && rest_.starts_with(expected);
        if (good_)
            rest_.remove_prefix(expected.size());
        return good_;
    }

    template <class Number>
    bool number(Number& value, std::size_t minDigits, std::size_t maxDigits, int base = 10)
    {
        const char* begin = rest_.data();
        const char* end = begin + std::min(rest_.size(), maxDigits);
        const auto [stop, error] = std::from_chars(begin, end, value, base);
        const auto used = static_cast<std::size_t>(stop - begin);
        good_ = good_ && error == std::errc() && used >= minDigits && *begin != '-';
        if (good_)
            rest_.remove_prefix(used);
        return good_;
    }

    std::string_view upTo(std::string_view end) // the text before the end, which is skipped
    {
        const std::size_t position = rest_.find(end);
        good_ = good_ && position != std::string_view::npos;
        if (!good_)
            return {};
        const std::string_view found = rest_.substr(0, position);
        rest_.remove_prefix(position + end.size());
        return found;
    }

    bool good() const { return good_; }
    bool atEnd() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
    bool good_ = true;
};

bool parseDate(std::string_view text, std::int64_t& time)
{
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int micro = 0;
    Scanner scanner(text);
    scanner.number(year, 4, 4) && scanner.literal(".") && scanner.number(month, 2, 2) && scanner.literal(".") &&
        scanner.number(day, 2, 2) && scanner.literal("-") && scanner.number(hour, 2, 2) && scanner.literal(".") &&
        scanner.number(minute, 2, 2) && scanner.literal(".") && scanner.number(second, 2, 2) && scanner.literal(".") &&
        scanner.number(micro, 6, 6);
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month), std::chrono::day(day)};
    if (!scanner.good() || !scanner.atEnd() || !date.ok() || year < 1970 || hour > 23 || minute > 59 || second > 60)
        return false;
    const std::chrono::sys_time<std::chrono::microseconds> moment =
        std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
        std::chrono::seconds(second) + std::chrono::microseconds(micro);
    time = moment.time_since_epoch().count();
    return true;
}

bool parseRelative(std::string_view text, std::int64_t& time)
{
    std::uint32_t seconds = 0;
    std::uint32_t micro = 0;
    Scanner scanner(text);
    scanner.number(seconds, 4, 10) && scanner.literal(".") && scanner.number(micro, 6, 6);
    time = std::int64_t{seconds} * 1000000 + micro;
    return scanner.good() && scanner.atEnd();
}

} // namespace

std::optional<LogLine> parseLogLine(std::string_view text)
{
    LogLine line{};
    Scanner scanner(text);
    line.timeText = scanner.upTo(separator);
    line.absolute = parseDate(line.timeText, line.time);
    if (!line.absolute && !parseRelative(line.timeText, line.time))
        return std::nullopt;
    if (!scanner.literal("ZUCOM PH=0x") || !scanner.number(line.port, 1, 8, 16) || !scanner.literal(" TID="))
        return std::nullopt;
    // The function is the text between the last blank and the colon before the tag: a thread without an identifier
    // is written with blanks and colons of its own.
    const std::string_view location = scanner.upTo(separator);
    const std::string_view place = location.ends_with(" ERROR") ? location.substr(0, location.size() - 6) : location;
    const std::size_t colon = place.rfind(':');
    const std::size_t blank = place.rfind(' ');
    if (!scanner.good() || colon == std::string_view::npos || blank == std::string_view::npos || colon < blank)
        return std::nullopt;
    line.error = place.size() != location.size();
    line.function = place.substr(blank + 1, colon - blank - 1);
    line.message = scanner.rest();
    Scanner tag(place.substr(colon + 1));
    if (!tag.number(line.tag, 1, 6) || !tag.atEnd())
        return std::nullopt;
    return line;
}

bool isLogHeader(std::string_view text)
{
    for (const std::string_view header : headerLines)
        if (text == header)
            return true;
    return false;
}

bool isHarmless(const LogLine& line) { return line.message == "RS485 not available"; }

std::string secondsText(std::int64_t time)
{
    return fmt::format("{}{}.{:06}", time < 0 ? "-" : "", std::abs(time / 1000000), std::abs(time % 1000000));
}
