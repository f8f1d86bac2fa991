// Reads what the library logged and finds out where the time went. Without input or output of its own.
#ifndef ZUCOM_TOOLS_TIMELINE_H
#define ZUCOM_TOOLS_TIMELINE_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/common/logLine.h"
#include "tools/timeline/lane.h"

// Time-outs, broken answers and errors, the first of them in words.
struct Trouble
{
    std::int64_t time;
    std::uint32_t port;
    EventKind kind;
    std::string text;
};

// Takes lines in their order, any number of them: the time axis has at most 1024 columns, whose width doubles as the
// log goes on, and at most 32 ports have a lane of their own.
class Timeline
{
public:
    static constexpr std::int64_t mostColumns = 1024;
    static constexpr std::size_t mostLanes = 32;
    static constexpr std::size_t mostTroubles = 200;

    void nextFile(); // the next line begins another file, which may go back in time
    void line(std::string_view text);

    bool empty() const { return lanes_.empty(); }
    bool absolute() const { return absolute_; }   // times are dates
    std::int64_t begin() const { return begin_; } // us
    std::int64_t end() const { return end_; }
    std::int64_t columnWidth() const { return width_; }
    const std::vector<Lane>& lanes() const
    {
        return lanes_;
    } // the last one is of further ports when there are too many
    bool hasFurtherPorts() const { return lanes_.size() > mostLanes; }
    const std::vector<Trouble>& troubles() const { return troubles_; }
    AnswerTimes answerTimes() const;        // of all ports
    std::vector<std::string> notes() const; // what is remarkable about the log itself

private:
    std::int64_t timeOf(const LogLine& line);
    void stretchTo(std::int64_t time);
    Lane& laneOf(const LogLine& line);
    Lane& laneOfOpening(const LogLine& line);
    Lane& addLane(std::uint32_t port);
    void trouble(const LogLine& line, Lane& lane, std::int64_t time);

    std::vector<Lane> lanes_;
    std::map<std::uint32_t, std::size_t> laneByPort_;
    std::vector<Trouble> troubles_;
    std::int64_t width_ = 1; // us
    std::int64_t begin_ = 0;
    std::int64_t end_ = 0;
    std::int64_t offset_ = 0; // added to the times of the log, so that they never run back
    std::int64_t latest_ = 0; // time of this file
    bool fileBegins_ = true;
    bool absolute_ = false;          // the clock of the axis
    bool fileClockAbsolute_ = false; // the clock of the latest line
    std::uint64_t clockSteps_ = 0;
    std::uint64_t logLines_ = 0;
    std::uint64_t otherLines_ = 0;
};

// The three forms in which a timeline is shown.
std::string timelineSvg(const Timeline& timeline);
std::string timelineText(const Timeline& timeline, std::size_t width);
std::string timelineJson(const Timeline& timeline);

// The picture of a log of any size and content, at once.
std::string drawTimeline(std::string_view log);

#endif
