// Which lines of a log are wanted.
#include "tools/monitor/lineFilter.h"

#include "tools/common/logLine.h"

bool LineFilter::wants(std::string_view line) const
{
    if (!text.empty() && line.find(text) == std::string_view::npos)
        return false;
    if (handle == 0 && kind == "all")
        return true;
    const std::optional<LogLine> parsed = parseLogLine(line);
    if (!parsed)
        return false;
    if (handle != 0 && static_cast<std::uint32_t>(handle) != parsed->port)
        return false;
    if (kind == "frames")
        return parsed->message.starts_with("Transmitting data: ") || parsed->message.starts_with("Received protocol: ");
    return kind == "all" || parsed->error == (kind == "error");
}
