// zucom monitor: the log of running programs, live.
#include "tools/monitor/monitorCommand.h"

#include <cstdio>
#include <memory>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <poll.h>

#include "tools/common/failure.h"
#include "tools/common/jsonText.h"
#include "tools/common/lineSplitter.h"
#include "tools/common/logLine.h"
#include "tools/common/options.h"
#include "tools/common/plainText.h"
#include "tools/common/stopSignal.h"
#include "tools/common/terminal.h"
#include "tools/monitor/lineFilter.h"
#include "tools/monitor/logSocket.h"

namespace
{

struct Settings
{
    std::string address = "127.0.0.1";
    int port = 9000;
    LineFilter filter;
    int count = 0; // 0 has no limit
    bool json = false;
};

std::string lineJson(std::string_view text)
{
    const std::optional<LogLine> line = parseLogLine(text);
    if (!line)
        return jsonLine({{"text", text}});
    return jsonLine({{"time", line->timeText},
                     {"port", line->port},
                     {"function", line->function},
                     {"tag", line->tag},
                     {"error", line->error},
                     {"message", line->message}});
}

std::string lineText(std::string_view text)
{
    const std::optional<LogLine> line = parseLogLine(text);
    const std::string plain = printable(text, LineSplitter::limit);
    if (line && line->error)
        return paint(Colour::red, plain) + '\n';
    if (line && (line->message.starts_with("Transmitting data: ") || line->message.starts_with("Received protocol: ")))
        return paint(Colour::cyan, plain) + '\n';
    return plain + '\n';
}

// What the configuration of the program to watch needs.
std::string configuration(const Settings& settings)
{
    const bool path = settings.address.starts_with('/');
    return fmt::format("[OUTPUTTER]\nlogudpaddr = {}\n{}[ZUCOM]\nlogtrace = on\nlogerror = on\n", settings.address,
                       path ? std::string() : fmt::format("logudpport = {}\n", settings.port));
}

int run(const Settings& settings)
{
    LogSocket socket(settings.address, settings.port);
    const StopSignal stop;
    fmt::print(stderr, "Listening. A program is heard when its configuration holds\n\n{}\n", configuration(settings));

    int shown = 0;
    const auto enough = [&] { return settings.count > 0 && shown >= settings.count; };
    LineSplitter lines(
        [&](std::string_view line)
        {
            if (enough() || !settings.filter.wants(line))
                return;
            ++shown;
            std::fputs((settings.json ? lineJson(line) : lineText(line)).c_str(), stdout);
            std::fflush(stdout);
        });
    pollfd waits[] = {{socket.descriptor(), POLLIN, 0}, {stop.descriptor(), POLLIN, 0}};
    while (!stop.requested() && !enough())
    {
        poll(waits, std::size(waits), -1);
        if (const std::optional<std::string> datagram = socket.receive())
        {
            lines.push(*datagram);
            lines.finish(); // a line never goes on in the next datagram
        }
    }
    return exitDone;
}

} // namespace

Action monitorCommand(Options& options)
{
    const auto settings = std::make_shared<Settings>();
    options
        .text("address", settings->address, "IPv4 or IPv6 address of this machine, or path of a socket, to listen on")
        .number("-p,--port", settings->port, 1, 65535, "Port to listen on; not for a path")
        .number("--handle", settings->filter.handle, 0, 0xFFFFFFF, "Only lines of the port with this handle; 0 is any")
        .choice("-k,--kind", settings->filter.kind, {"all", "trace", "error", "frames"},
                "Only lines of this kind; frames are transmits and answers")
        .text("-t,--text", settings->filter.text, "Only lines that hold this text")
        .number("-c,--count", settings->count, 0, 1000000000, "End after this many lines; 0 goes on until Ctrl-C")
        .flag("--json", settings->json, "Print one JSON object for each line")
        .footer("Example: zucom monitor :: --port 9000 --kind error");
    return [settings] { return run(*settings); };
}
