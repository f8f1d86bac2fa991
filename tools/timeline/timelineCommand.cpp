// zucom timeline: where the time went, by a log of the library.
#include "tools/timeline/timelineCommand.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <vector>

#include "tools/common/failure.h"
#include "tools/common/lineInput.h"
#include "tools/common/options.h"
#include "tools/common/terminal.h"
#include "tools/timeline/timeline.h"

namespace
{

struct Settings
{
    std::vector<std::string> logs;
    std::string svg;
    bool json = false;
};

void writeFile(const std::string& path, const std::string& content)
{
    if (path == "-")
    {
        std::fputs(content.c_str(), stdout);
        return;
    }
    std::ofstream file(path, std::ios::binary);
    file << content << std::flush;
    if (!file)
        throw Refused(path + ": " + std::strerror(errno));
}

int run(const Settings& settings)
{
    Timeline timeline;
    LineSplitter lines([&](std::string_view line) { timeline.line(line); });
    for (const std::string& log : settings.logs)
    {
        timeline.nextFile();
        readLines(log, lines);
    }
    if (lines.cutLines() > 0)
        std::fprintf(stderr, "zucom timeline: %zu lines of more than 1 MiB were cut\n", lines.cutLines());
    if (timeline.empty())
        throw Refused("no line of a port in the log; switch \"logtrace\" and \"logerror\" on");
    if (!settings.svg.empty())
        writeFile(settings.svg, timelineSvg(timeline));
    if (settings.json)
        std::fputs(timelineJson(timeline).c_str(), stdout);
    else if (settings.svg != "-")
        std::fputs(timelineText(timeline, static_cast<std::size_t>(terminalWidth())).c_str(), stdout);
    return exitDone;
}

} // namespace

Action timelineCommand(Options& options)
{
    const auto settings = std::make_shared<Settings>();
    options.texts("log", settings->logs, "Log files of the library, in the order of time; - is standard input")
        .required()
        .text("-s,--svg", settings->svg, "Draw the picture into this file; - is standard output")
        .flag("--json", settings->json, "Print the numbers as JSON; times in microseconds")
        .footer("Example: zucom timeline trace-ZUCOM.log --svg timeline.svg");
    return [settings]
    {
        if (settings->json && settings->svg == "-")
            throw UsageError("--json and --svg - both want standard output");
        return run(*settings);
    };
}
