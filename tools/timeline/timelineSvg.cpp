// A timeline as one self-contained picture: no script, no font and no other file is needed to look at it.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include "tools/timeline/timeScale.h"
#include "tools/timeline/timeline.h"

namespace
{

// Everything in pixels.
constexpr double plotLeft = 190;
constexpr double plotWidth = 1000;
constexpr double pictureWidth = 1230;
constexpr double headHeight = 84;
constexpr double laneHeight = 104;
constexpr double histogramHeight = 230;
constexpr double lineHeight = 16;
constexpr double gapLabelWidth = 64;
constexpr double labelWidth = 56; // of a duration below the histogram
constexpr std::size_t axisTicks = 10;
constexpr std::size_t histogramBars = 48;
constexpr std::size_t listedTroubles = 20;

struct Row // of a lane: where it lies and what it shows
{
    const char* label;
    double top;
    double height;
};

constexpr Row transmitRow{"transmits", 10, 14};
constexpr Row waitRow{"waiting", 28, 34};
constexpr Row answerRow{"answers", 66, 14};
constexpr Row troubleRow{"trouble", 84, 12};

struct EventStyle
{
    const char* name;
    const char* colour;
    Row row;
};

constexpr EventStyle eventStyles[eventKinds] = {
    {"transmit", "#1f6fb4", transmitRow},     {"answer", "#2a9d5c", answerRow}, {"time-out", "#d1344b", troubleRow},
    {"broken answer", "#e08e1b", troubleRow}, {"error", "#7b2d8b", troubleRow},
};

struct WaitStyle
{
    const char* name;
    const char* colour;
};

constexpr WaitStyle waitStyles[waitKinds] = {
    {"waiting for an answer that came", "#a9dcbd"}, {"waiting in vain", "#f0a6b0"}, {"exchange failed", "#f6d09a"}};

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char character : text)
        switch (character)
        {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += character;
        }
    return result;
}

std::string textAt(double x, double y, std::string_view text, const char* attributes = "")
{
    return fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" {}>{}</text>\n", x, y, attributes, escaped(text));
}

std::string box(double x, double y, double width, double height) // as a part of a path
{
    return fmt::format("M{:.2f} {:.2f}h{:.2f}v{:.2f}h-{:.2f}z", x, y, width, height, width);
}

std::string path(const std::string& boxes, const char* colour)
{
    return boxes.empty() ? std::string() : fmt::format("<path fill=\"{}\" d=\"{}\"/>\n", colour, boxes);
}

// Draws from top to bottom.
class Drawing
{
public:
    explicit Drawing(const Timeline& timeline)
        : timeline_(timeline),
          scale_(timeline.begin(), timeline.end(), timeline.absolute()),
          range_(static_cast<double>(std::max<std::int64_t>(1, timeline.end() - timeline.begin())))
    {
    }

    std::string draw()
    {
        drawHead();
        const double lanesTop = y_;
        for (const Lane& lane : timeline_.lanes())
            drawLane(lane);
        drawAxis(lanesTop, y_);
        y_ += 24;
        drawHistogram();
        drawList();
        return fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
                           "viewBox=\"0 0 {0} {1}\" font-family=\"sans-serif\" font-size=\"12\" fill=\"#222\">\n"
                           "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n",
                           pictureWidth, y_ + 16) +
               body_ + "</svg>\n";
    }

private:
    double xOf(double time) const
    {
        const double share = (time - static_cast<double>(timeline_.begin())) / range_;
        return plotLeft + plotWidth * std::clamp(share, 0.0, 1.0);
    }

    void drawHead()
    {
        body_ += textAt(16, 26, "zucom timeline", "font-size=\"18\" font-weight=\"bold\"");
        body_ += textAt(plotLeft, 26,
                        fmt::format("{}, {} long", scale_.title(), durationText(timeline_.end() - timeline_.begin())));
        double x = plotLeft;
        const auto legend = [&](const char* name, const char* colour)
        {
            body_ += path(box(x, 38, 12, 12), colour) + textAt(x + 16, 48, name);
            x += 34 + 6.4 * static_cast<double>(std::string_view(name).size());
        };
        for (const EventStyle& style : eventStyles)
            legend(style.name, style.colour);
        for (const WaitStyle& style : waitStyles)
            legend(style.name, style.colour);
        y_ = headHeight;
    }

    void drawAxis(double top, double bottom)
    {
        std::string lines;
        for (const std::int64_t tick : scale_.ticks(axisTicks))
        {
            const double x = xOf(static_cast<double>(tick));
            lines += fmt::format("M{:.1f} {:.1f}V{:.1f}", x, top - 4, bottom);
            body_ += textAt(x, top - 8, scale_.tickText(tick), "text-anchor=\"middle\" font-size=\"11\"");
        }
        body_ += fmt::format("<path stroke=\"#000\" stroke-opacity=\"0.12\" fill=\"none\" d=\"{}\"/>\n", lines);
    }

    void drawLane(const Lane& lane)
    {
        const bool further = timeline_.hasFurtherPorts() && &lane == &timeline_.lanes().back();
        body_ += fmt::format("<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" fill=\"#f6f7f9\"/>\n",
                             plotLeft, y_ + 6, plotWidth, laneHeight - 10);
        body_ += textAt(16, y_ + 22, further ? std::string("further ports") : fmt::format("PH=0x{:x}", lane.port),
                        "font-weight=\"bold\"");
        const std::string device =
            lane.device.size() > 19 ? "..." + lane.device.substr(lane.device.size() - 16) : lane.device;
        body_ += textAt(16, y_ + 38, device, "font-size=\"11\"");
        double line = y_ + 54;
        for (int kind = 0; kind < eventKinds; ++kind)
            if (kind < eventTimeout || lane.total.events[kind] > 0)
            {
                body_ += textAt(16, line, fmt::format("{} {}", lane.total.events[kind], plural(kind, lane)),
                                "font-size=\"10\"");
                line += 11;
            }
        for (const Row& row : {transmitRow, waitRow, answerRow, troubleRow})
            body_ += textAt(plotLeft - 6, y_ + row.top + row.height / 2 + 4, row.label,
                            "text-anchor=\"end\" font-size=\"10\" fill=\"#666\"");
        drawColumns(lane);
        drawLongestGap(lane);
        y_ += laneHeight;
    }

    static std::string plural(int kind, const Lane& lane)
    {
        return std::string(eventStyles[kind].name) + (lane.total.events[kind] == 1 ? "" : "s");
    }

    void drawColumns(const Lane& lane)
    {
        std::array<std::string, eventKinds> marks;
        std::array<std::string, waitKinds> waits;
        std::string tips;
        for (const auto& [index, column] : lane.columns)
        {
            const double from = static_cast<double>(index * timeline_.columnWidth());
            const double to = from + static_cast<double>(timeline_.columnWidth());
            const double x = xOf(from);
            const double width = std::max(1.3, xOf(to) - x);
            for (int kind = 0; kind < eventKinds; ++kind)
                if (column.events[kind] > 0)
                    marks[static_cast<std::size_t>(kind)] +=
                        box(x, y_ + eventStyles[kind].row.top, width, eventStyles[kind].row.height);
            double bottom = y_ + waitRow.top + waitRow.height;
            for (int kind = 0; kind < waitKinds; ++kind)
            {
                const double seen = std::min(to, static_cast<double>(timeline_.end())) -
                                    std::max(from, static_cast<double>(timeline_.begin()));
                const double height =
                    waitRow.height * std::min(1.0, static_cast<double>(column.waited[kind]) / std::max(1.0, seen));
                if (height <= 0)
                    continue;
                bottom -= height;
                waits[static_cast<std::size_t>(kind)] += box(x, bottom, width, height);
            }
            tips += tipOf(column, x, width, static_cast<std::int64_t>(from));
        }
        for (std::size_t kind = 0; kind < waitKinds; ++kind)
            body_ += path(waits[kind], waitStyles[kind].colour);
        for (std::size_t kind = 0; kind < eventKinds; ++kind)
            body_ += path(marks[kind], eventStyles[kind].colour);
        body_ += "<g fill=\"#000\" fill-opacity=\"0\">\n" + tips + "</g>\n";
    }

    // A bracket over the longest gap, where it is wide enough to be read.
    void drawLongestGap(const Lane& lane)
    {
        const double from = xOf(static_cast<double>(lane.longestGapAt));
        const double to = xOf(static_cast<double>(lane.longestGapAt + lane.longestGap));
        const double middle = y_ + waitRow.top + waitRow.height / 2;
        if (to - from < gapLabelWidth)
            return;
        body_ += fmt::format("<path stroke=\"#888\" fill=\"none\" d=\"M{0:.1f} {2:.1f}v8m0 -4H{1:.1f}m0 -4v8\"/>\n",
                             from + 1, to - 1, middle);
        body_ += textAt((from + to) / 2, middle - 2, "gap " + durationText(lane.longestGap),
                        "text-anchor=\"middle\" font-size=\"10\" fill=\"#666\"");
    }

    // What the browser shows while the mouse rests on a column in which something happened.
    std::string tipOf(const Column& column, double x, double width, std::int64_t from) const
    {
        std::string what;
        for (int kind = 0; kind < eventKinds; ++kind)
            if (column.events[kind] > 0)
                what += fmt::format("\n{} {}{}", column.events[kind], eventStyles[kind].name,
                                    column.events[kind] == 1 ? "" : "s");
        if (what.empty())
            return {};
        return fmt::format("<path d=\"{}\"><title>{}{}</title></path>\n",
                           box(x, y_ + transmitRow.top, width, laneHeight - 14),
                           scale_.text(std::max(from, timeline_.begin())), what);
    }

    void drawHistogram()
    {
        const AnswerTimes times = timeline_.answerTimes();
        body_ += textAt(16, y_ + 14, "Answer times", "font-weight=\"bold\"");
        if (times.count() == 0)
        {
            body_ += textAt(plotLeft, y_ + 14, "no answer belongs to a transmit of this log");
            y_ += 30;
            return;
        }
        body_ += textAt(plotLeft, y_ + 14,
                        fmt::format("{} answers: shortest {}, median {}, 99 % within {}, longest {}", times.count(),
                                    durationText(times.shortest()), durationText(times.quantile(0.5)),
                                    durationText(times.quantile(0.99)), durationText(times.longest())));
        const std::vector<AnswerTimes::Bar> bars = times.bars(histogramBars);
        const auto most =
            std::max_element(bars.begin(), bars.end(), [](const auto& a, const auto& b) { return a.count < b.count; });
        const double full = histogramHeight - 70;
        const double bottom = y_ + 30 + full;
        const double width = std::min(60.0, plotWidth / static_cast<double>(bars.size()));
        const auto labelEvery = static_cast<std::size_t>(std::ceil(labelWidth / width));
        std::string boxes;
        for (std::size_t i = 0; i <= bars.size(); ++i)
        {
            const double x = plotLeft + width * static_cast<double>(i);
            if (i % labelEvery == 0)
                body_ += textAt(x, bottom + 16, durationText(i < bars.size() ? bars[i].from : bars.back().to),
                                "text-anchor=\"middle\" font-size=\"10\"");
            if (i == bars.size() || bars[i].count == 0)
                continue;
            const double height =
                std::max(1.0, full * static_cast<double>(bars[i].count) / static_cast<double>(most->count));
            boxes += box(x + 0.5, bottom - height, width - 1, height);
        }
        body_ += path(boxes, eventStyles[eventAnswer].colour);
        body_ += textAt(plotLeft - 6, bottom - full + 8, std::to_string(most->count), "text-anchor=\"end\"");
        body_ += path(box(plotLeft, bottom, width * static_cast<double>(bars.size()), 1), "#222");
        y_ += histogramHeight;
    }

    void drawList()
    {
        const std::vector<Trouble>& troubles = timeline_.troubles();
        if (!troubles.empty())
            body_ += textAt(16, y_ + 10, "Trouble", "font-weight=\"bold\"");
        for (std::size_t i = 0; i < std::min(troubles.size(), listedTroubles); ++i)
        {
            body_ += path(box(plotLeft - 14, y_ + 1, 8, 8), eventStyles[troubles[i].kind].colour);
            body_ += textAt(
                plotLeft, y_ + 10,
                fmt::format("{}   PH=0x{:x}   {}", scale_.text(troubles[i].time), troubles[i].port, troubles[i].text));
            y_ += lineHeight;
        }
        if (troubles.size() > listedTroubles)
        {
            body_ += textAt(plotLeft, y_ + 10, "and more: see the lanes");
            y_ += lineHeight;
        }
        y_ += troubles.empty() ? 0 : 8;
        for (const std::string& note : timeline_.notes())
        {
            body_ += textAt(16, y_ + 10, "Note: " + note);
            y_ += lineHeight;
        }
    }

    const Timeline& timeline_;
    TimeScale scale_;
    double range_; // us
    double y_ = 0;
    std::string body_;
};

} // namespace

std::string timelineSvg(const Timeline& timeline) { return Drawing(timeline).draw(); }
