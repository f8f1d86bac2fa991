// A timeline for the terminal, and as data.
#include <algorithm>
#include <array>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tools/common/jsonText.h"
#include "tools/timeline/timeScale.h"
#include "tools/timeline/timeline.h"

namespace
{

constexpr const char* eventNames[eventKinds] = {"transmits", "answers", "time-outs", "broken answers", "errors"};
constexpr const char* eventKeys[eventKinds] = {"transmits", "answers", "timeouts", "broken", "errors"};
constexpr const char* waitNames[waitKinds] = {"for answers", "in time-outs", "in failed exchanges"};
constexpr const char* waitKeys[waitKinds] = {"answered", "timedOut", "failed"};
constexpr char eventSigns[eventKinds] = {'\0', '\0', 'T', 'B', 'E'}; // in the line of troubles
constexpr const char* levels[] = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::size_t shownBars = 16;
constexpr std::size_t shownTroubles = 12;
constexpr std::size_t marginWidth = 10; // before the cells of a lane
constexpr std::size_t barWidth = 40;

std::string laneName(const Timeline& timeline, const Lane& lane)
{
    if (timeline.hasFurtherPorts() && &lane == &timeline.lanes().back())
        return "further ports";
    return fmt::format("PH=0x{:x}{}{}", lane.port, lane.device.empty() ? "" : " ", lane.device);
}

// The columns joined to as many cells as the terminal has room for.
std::vector<Column> cellsOf(const Timeline& timeline, const Lane& lane, std::size_t count)
{
    std::vector<Column> cells(count);
    const std::int64_t first = timeline.begin() / timeline.columnWidth();
    const std::int64_t columns = timeline.end() / timeline.columnWidth() - first + 1;
    for (const auto& [index, column] : lane.columns)
        cells[static_cast<std::size_t>((index - first) * static_cast<std::int64_t>(count) / columns)].add(column);
    return cells;
}

std::string waitLine(const std::vector<Column>& cells, std::int64_t cellTime)
{
    std::string text;
    for (const Column& cell : cells)
    {
        std::int64_t waited = 0;
        for (const std::int64_t part : cell.waited)
            waited += part;
        const auto eighths =
            static_cast<std::size_t>(std::min<std::int64_t>(8, waited * 8 / std::max<std::int64_t>(cellTime, 1)));
        text += eighths == 0 && cell.events[eventTransmit] > 0 ? "." : levels[eighths];
    }
    return text;
}

std::string troubleLine(const std::vector<Column>& cells)
{
    std::string text;
    for (const Column& cell : cells)
    {
        char sign = ' ';
        for (int kind = 0; kind < eventKinds; ++kind)
            if (cell.events[kind] > 0 && eventSigns[kind] != '\0')
                sign = eventSigns[kind];
        text += sign;
    }
    return text;
}

std::string laneText(const Timeline& timeline, const Lane& lane, std::size_t width, const TimeScale& scale)
{
    std::string text = laneName(timeline, lane) + ":";
    for (int kind = 0; kind < eventKinds; ++kind)
        text += fmt::format("{} {} {}", kind == 0 ? "" : ",", eventNames[kind], lane.total.events[kind]);
    text += '\n';
    const std::vector<Column> cells = cellsOf(timeline, lane, width);
    const std::int64_t cellTime = (timeline.end() - timeline.begin()) / static_cast<std::int64_t>(width);
    text += fmt::format("{:<{}}|{}|\n", "  waiting", marginWidth, waitLine(cells, cellTime));
    text += fmt::format("{:<{}}|{}|\n", "  trouble", marginWidth, troubleLine(cells));
    text += "  time:";
    for (int kind = 0; kind < waitKinds; ++kind)
        text += fmt::format(" {} {},", durationText(lane.total.waited[kind]), waitNames[kind]);
    text += fmt::format(" {} in {} gap{}", durationText(lane.gapTime), lane.gaps, lane.gaps == 1 ? "" : "s");
    if (lane.gaps > 0)
        text += fmt::format(", the longest {} after {}", durationText(lane.longestGap), scale.text(lane.longestGapAt));
    return text + "\n\n";
}

std::string histogramText(const AnswerTimes& times)
{
    if (times.count() == 0)
        return {};
    std::string text = fmt::format("Answer times: {} answers, shortest {}, median {}, 99 % within {}, longest {}\n",
                                   times.count(), durationText(times.shortest()), durationText(times.quantile(0.5)),
                                   durationText(times.quantile(0.99)), durationText(times.longest()));
    const std::vector<AnswerTimes::Bar> bars = times.bars(shownBars);
    std::uint64_t most = 1;
    for (const AnswerTimes::Bar& bar : bars)
        most = std::max(most, bar.count);
    for (const AnswerTimes::Bar& bar : bars)
    {
        const auto length = static_cast<std::size_t>((bar.count * barWidth + most - 1) / most);
        text += fmt::format("  {:>8} to {:>8} |{:<{}}| {}\n", durationText(bar.from), durationText(bar.to),
                            std::string(length, '#'), barWidth, bar.count);
    }
    return text + '\n';
}

nlohmann::ordered_json timesJson(const AnswerTimes& times)
{
    if (times.count() == 0)
        return nullptr;
    nlohmann::ordered_json bars = nlohmann::ordered_json::array();
    for (const AnswerTimes::Bar& bar : times.bars(64))
        if (bar.count > 0)
            bars.push_back({{"from", bar.from}, {"to", bar.to}, {"count", bar.count}});
    return {{"count", times.count()},        {"shortest", times.shortest()}, {"mean", times.mean()},
            {"median", times.quantile(0.5)}, {"p90", times.quantile(0.9)},   {"p99", times.quantile(0.99)},
            {"longest", times.longest()},    {"bars", std::move(bars)}};
}

nlohmann::ordered_json laneJson(const Timeline& timeline, const Lane& lane)
{
    nlohmann::ordered_json json = {{"name", laneName(timeline, lane)}, {"port", lane.port}, {"device", lane.device}};
    for (int kind = 0; kind < eventKinds; ++kind)
        json[eventKeys[kind]] = lane.total.events[kind];
    for (int kind = 0; kind < waitKinds; ++kind)
        json["waited"][waitKeys[kind]] = lane.total.waited[kind];
    json["gaps"] = {
        {"count", lane.gaps}, {"total", lane.gapTime}, {"longest", lane.longestGap}, {"longestAt", lane.longestGapAt}};
    json["answerTimes"] = timesJson(lane.answerTimes);
    return json;
}

} // namespace

std::string timelineText(const Timeline& timeline, std::size_t width)
{
    const TimeScale scale(timeline.begin(), timeline.end(), timeline.absolute());
    const std::size_t cells = std::clamp<std::size_t>(width, marginWidth + 22, 500) - marginWidth - 2;
    std::string text = fmt::format("From {} to {}, {}\n\n", scale.text(timeline.begin()), scale.text(timeline.end()),
                                   durationText(timeline.end() - timeline.begin()));
    for (const Lane& lane : timeline.lanes())
        text += laneText(timeline, lane, cells, scale);
    if (!timeline.lanes().empty())
        text += "waiting: share of the time in which a request was out, . for less than an eighth; "
                "trouble: T time-out, B broken answer, E error\n\n";
    text += histogramText(timeline.answerTimes());
    std::size_t shown = 0;
    for (const Trouble& trouble : timeline.troubles())
    {
        if (++shown > shownTroubles)
        {
            text += fmt::format("  ... {} more are in the picture and in --json\n",
                                timeline.troubles().size() - shownTroubles);
            break;
        }
        text += fmt::format("  {}  PH=0x{:x}  {}\n", scale.text(trouble.time), trouble.port, trouble.text);
    }
    for (const std::string& note : timeline.notes())
        text += "Note: " + note + '\n';
    return text;
}

std::string timelineJson(const Timeline& timeline)
{
    nlohmann::ordered_json lanes = nlohmann::ordered_json::array();
    for (const Lane& lane : timeline.lanes())
        lanes.push_back(laneJson(timeline, lane));
    nlohmann::ordered_json troubles = nlohmann::ordered_json::array();
    for (const Trouble& trouble : timeline.troubles())
        troubles.push_back({{"time", trouble.time},
                            {"port", trouble.port},
                            {"kind", eventKeys[trouble.kind]},
                            {"text", trouble.text}});
    return jsonText({{"unit", "us"},
                     {"absolute", timeline.absolute()},
                     {"begin", timeline.begin()},
                     {"end", timeline.end()},
                     {"lanes", std::move(lanes)},
                     {"answerTimes", timesJson(timeline.answerTimes())},
                     {"troubles", std::move(troubles)},
                     {"notes", timeline.notes()}});
}
