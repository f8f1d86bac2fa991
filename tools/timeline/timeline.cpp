// Reads what the library logged and finds out where the time went. Without input or output of its own.
#include "tools/timeline/timeline.h"

#include <algorithm>

#include <fmt/format.h>

#include "tools/common/lineSplitter.h"
#include "tools/common/plainText.h"
#include "tools/explain/byteText.h"

namespace
{

// Numbers of the log points that begin or end something.
enum LogPoint
{
    pointOpening = 40,
    pointClosing = 106,
    pointTransmitting = 131,
    pointReceiving = 163,
    pointWaitEnded = 211,
    pointReceived = 246,
};

constexpr std::string_view openingText = "Opening device: devicePath=";
constexpr std::string_view openingEnd = " busaddress=";
constexpr std::string_view receivingText = "Receiving on device: ";
constexpr std::string_view transmittingText = "Transmitting data: ";
constexpr std::string_view transmitFunction = "ZucomPort::transmit";
constexpr std::string_view receiveFunction = "ZucomPort::receive";
constexpr std::size_t requestKept = 24; // characters of a dump: enough for the longest header and a command
constexpr std::int64_t latestTime = std::int64_t{1} << 62; // no sum of times comes near the end of the numbers
constexpr std::int64_t reorderLimit = 1000000; // us; threads write their lines a little later than they took the time

std::string_view behind(std::string_view text, std::string_view prefix)
{
    return text.starts_with(prefix) ? text.substr(prefix.size()) : std::string_view();
}

// "request 0x52 to address 255", as far as the beginning of the frame tells.
std::string requestText(const std::string& dump)
{
    const Bytes bytes = bytesFromText(std::string_view(dump).substr(0, dump.size() / 3 * 3)).bytes;
    const FrameLayout* layout = layoutOf(bytes);
    if (!layout || bytes.size() <= layout->payloadAt)
        return {};
    return fmt::format(", request 0x{:02X} to address {}", bytes[layout->payloadAt], bytes[layout->addressAt]);
}

} // namespace

void Timeline::nextFile()
{
    fileBegins_ = true;
    for (Lane& lane : lanes_)
    {
        lane.forgetOpenEnds();
        lane.lastTime = 0;
    }
}

void Timeline::line(std::string_view text)
{
    const std::optional<LogLine> line = parseLogLine(text);
    if (!line)
    {
        otherLines_ += isLogHeader(text) ? 0 : 1;
        return;
    }
    ++logLines_;
    std::int64_t time = timeOf(*line);
    stretchTo(time);
    Lane& lane = laneOf(*line);
    time = lane.lastTime = std::max(time, lane.lastTime);

    if (line->tag == pointTransmitting)
    {
        lane.request = line->message.substr(std::min(transmittingText.size(), line->message.size()), requestKept);
        lane.transmit(time, width_);
    }
    else if (line->tag == pointReceiving)
        lane.receive(time);
    else if (line->tag == pointReceived)
        lane.finish(time, width_, eventAnswer);
    else if (line->tag == pointClosing)
    {
        lane.closed = true;
        lane.forgetOpenEnds();
    }
    else if (line->error && !isHarmless(*line))
        trouble(*line, lane, time);
}

AnswerTimes Timeline::answerTimes() const
{
    AnswerTimes all;
    for (const Lane& lane : lanes_)
        all.add(lane.answerTimes);
    return all;
}

std::vector<std::string> Timeline::notes() const
{
    std::vector<std::string> notes;
    if (otherLines_ > 0)
        notes.push_back(fmt::format("{} of {} lines are no lines of a port and were skipped", otherLines_,
                                    otherLines_ + logLines_));
    if (clockSteps_ > 0)
        notes.push_back(fmt::format("the time ran back {} time{} (clock set, summer time, or another process); "
                                    "what follows is drawn behind",
                                    clockSteps_, clockSteps_ == 1 ? "" : "s"));
    if (hasFurtherPorts())
        notes.push_back(fmt::format("only {} ports have a lane of their own; the others share the last", mostLanes));
    std::uint64_t transmits = 0;
    for (const Lane& lane : lanes_)
        transmits += lane.total.events[eventTransmit];
    if (logLines_ > 0 && transmits == 0)
        notes.emplace_back("no transmit in the log: with \"logtrace = on\" there would be more to see");
    return notes;
}

// The line's time on the axis. A step back moves all that follows, so that it lies behind what came before.
std::int64_t Timeline::timeOf(const LogLine& line)
{
    if (logLines_ == 1)
    {
        absolute_ = line.absolute;
        begin_ = end_ = latest_ = line.time;
    }
    const bool otherClock = line.absolute != absolute_;
    if (fileBegins_)
    {
        offset_ = otherClock ? end_ - line.time : 0;
        latest_ = line.time + offset_;
        fileClockAbsolute_ = line.absolute;
        fileBegins_ = false;
    }
    const std::int64_t time = std::min(line.time + offset_, latestTime);
    if (time + reorderLimit < latest_ || line.absolute != fileClockAbsolute_)
    {
        ++clockSteps_;
        offset_ = latest_ - line.time;
        fileClockAbsolute_ = line.absolute;
        return latest_;
    }
    latest_ = std::max(latest_, time);
    return time;
}

void Timeline::stretchTo(std::int64_t time)
{
    begin_ = std::min(begin_, time);
    end_ = std::max(end_, time);
    while (end_ / width_ - begin_ / width_ >= mostColumns)
    {
        width_ *= 2;
        for (Lane& lane : lanes_)
            lane.doubleWidth();
    }
}

Lane& Timeline::laneOf(const LogLine& line)
{
    if (line.tag == pointOpening)
        return laneOfOpening(line);
    const auto found = laneByPort_.find(line.port);
    Lane& lane = found != laneByPort_.end() ? lanes_[found->second] : addLane(line.port);
    if (lane.device.empty() && line.tag == pointReceiving)
        lane.device = printable(behind(line.message, receivingText));
    return lane;
}

// A program may open and close the same device again and again; all of that is one lane.
Lane& Timeline::laneOfOpening(const LogLine& line)
{
    const std::string_view arguments = behind(line.message, openingText);
    const std::string device = printable(arguments.substr(0, arguments.rfind(openingEnd)));
    for (std::size_t i = 0; i < std::min(lanes_.size(), mostLanes); ++i)
    {
        Lane& lane = lanes_[i];
        if (lane.device != device || !(lane.closed || lane.port == line.port))
            continue;
        laneByPort_.erase(lane.port);
        laneByPort_[line.port] = i;
        lane.port = line.port;
        lane.closed = false;
        lane.forgetOpenEnds();
        return lane;
    }
    Lane& lane = addLane(line.port);
    if (!hasFurtherPorts())
        lane.device = device;
    return lane;
}

Lane& Timeline::addLane(std::uint32_t port)
{
    if (hasFurtherPorts())
        return lanes_.back();
    lanes_.emplace_back(port, lanes_.size() < mostLanes);
    if (!hasFurtherPorts())
        laneByPort_[port] = lanes_.size() - 1;
    return lanes_.back();
}

void Timeline::trouble(const LogLine& line, Lane& lane, std::int64_t time)
{
    const bool waitEnded = line.tag == pointWaitEnded;
    const EventKind kind = !waitEnded ? eventError : line.message.ends_with("timeout") ? eventTimeout : eventBroken;
    if (line.function == transmitFunction || line.function == receiveFunction)
        lane.finish(time, width_, kind);
    else
        lane.count(time, width_, kind);
    if (troubles_.size() < mostTroubles)
        troubles_.push_back(
            {time, line.port, kind, printable(line.message) + (waitEnded ? requestText(lane.request) : std::string())});
}

std::string drawTimeline(std::string_view log)
{
    Timeline timeline;
    LineSplitter lines([&](std::string_view text) { timeline.line(text); });
    lines.push(log);
    lines.finish();
    return timelineSvg(timeline);
}
