// A line that the library's logger wrote, taken apart again.
#ifndef ZUCOM_TOOLS_LOG_LINE_H
#define ZUCOM_TOOLS_LOG_LINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct LogLine
{
    bool absolute;             // the time is a date; otherwise it counts from the load of the library
    std::int64_t time;         // us; for a date since 1970 as if local time were UTC
    std::string_view timeText; // as it stands in the line
    std::uint32_t port;        // port handle
    std::string_view function; // "ZucomPort::transmit"
    int tag;                   // number of the log point
    bool error;                // carries the mark " ERROR"
    std::string_view message;
};

// Nothing when the text is not a line of a port. The views point into the text.
std::optional<LogLine> parseLogLine(std::string_view text);

// Whether a log file begins so, once for every process that wrote to it; such lines tell nothing.
bool isLogHeader(std::string_view text);

// Whether an error line only says that the driver knows no RS485, which most do not.
bool isHarmless(const LogLine& line);

// Whole microseconds as seconds, for example "12.000345".
std::string secondsText(std::int64_t time);

#endif
