// Says in words what bytes, a log line or a whole log hold. Without input or output of its own.
#include "tools/explain/explain.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tools/common/codeAdvice.h"
#include "tools/common/lineSplitter.h"
#include "tools/common/logLine.h"
#include "tools/common/plainText.h"
#include "tools/explain/byteText.h"
#include "tools/explain/framePicture.h"

namespace
{

constexpr std::string_view transmitted = "Transmitting data: ";
constexpr std::string_view received = "Received protocol: ";
constexpr std::string_view receivedEnd = " Length: ";

const char* directionText(Direction direction)
{
    constexpr const char* texts[] = {"", "request", "answer"};
    return texts[static_cast<int>(direction)];
}

std::string headline(const FrameReading& frame)
{
    std::string what = frame.kind ? fmt::format("{} frame", frame.kind) : "no frame";
    if (frame.kind && frame.direction != Direction::unknown)
        what = fmt::format("{} {}", frame.kind, directionText(frame.direction));
    return fmt::format("{}, {} byte{}: {}\n", what, frame.length, frame.length == 1 ? "" : "s",
                       frame.right ? "right" : "BROKEN");
}

template <class Value>
nlohmann::ordered_json orNull(const std::optional<Value>& value)
{
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
}

nlohmann::ordered_json frameJson(const FrameReading& frame)
{
    nlohmann::ordered_json fields = nlohmann::ordered_json::array();
    for (const FrameField& field : frame.fields)
        fields.push_back({{"name", field.name},
                          {"offset", field.offset},
                          {"length", field.length},
                          {"bytes", field.bytes},
                          {"meaning", field.meaning}});
    return {{"right", frame.right},
            {"kind", frame.kind ? nlohmann::ordered_json(frame.kind) : nlohmann::ordered_json()},
            {"direction", directionText(frame.direction)},
            {"length", frame.length},
            {"statedLength", orNull(frame.statedLength)},
            {"address", orNull(frame.address)},
            {"command", orNull(frame.command)},
            {"status", orNull(frame.status)},
            {"crcFound", orNull(frame.crcFound)},
            {"crcExpected", orNull(frame.crcExpected)},
            {"fields", std::move(fields)},
            {"faults", frame.faults},
            {"remedies", frame.remedies}};
}

} // namespace

std::optional<Explanation> Explainer::explainLine(std::string_view text)
{
    ++lines_;
    if (isLogHeader(text))
    {
        ++others_;
        return std::nullopt;
    }
    const std::optional<LogLine> line = parseLogLine(text);
    Explanation explanation = line ? fromLog(*line) : fromBytes(text, Direction::unknown);
    explanation.line = lines_;
    for (const FrameReading& frame : explanation.frames)
        ++(frame.right ? right_ : broken_);
    if (explanation.failure)
        ++failures_;
    if (!explanation.frames.empty() || explanation.failure)
        return explanation;
    ++others_;
    return std::nullopt;
}

Explanation Explainer::fromLog(const LogLine& line)
{
    Explanation explanation{};
    std::string_view dump = line.message;
    if (dump.starts_with(transmitted))
    {
        dump.remove_prefix(transmitted.size());
        explanation = fromBytes(dump, Direction::request);
    }
    else if (dump.starts_with(received))
    {
        dump = dump.substr(received.size(), dump.rfind(receivedEnd) - received.size());
        explanation = fromBytes(dump, Direction::answer);
    }
    else if (line.error && !isHarmless(line))
    {
        const CodeAdvice* advice = adviceForText(line.message);
        explanation.note = printable(line.message);
        if (advice)
            explanation.note += fmt::format(" ({})\n  {}\n  {}", advice->code, advice->meaning, advice->remedy);
        explanation.failure = true;
    }
    explanation.origin = fmt::format("PH=0x{:x} at {}, {}", line.port, line.timeText, printable(line.function));
    return explanation;
}

Explanation Explainer::fromBytes(std::string_view text, Direction direction)
{
    Explanation explanation{};
    ByteText read = bytesFromText(text);
    explanation.note = std::move(read.problem);
    explanation.failure = read.bytes.empty();
    const std::vector<ByteView> pieces = splitFrames(read.bytes);
    for (const ByteView piece : pieces)
    {
        explanation.frames.push_back(readFrame(piece, direction));
        FrameReading& frame = explanation.frames.back();
        if (!frame.right && pieces.size() > 1)
            frame.faults.push_back(fmt::format("too many: without {} only right frames would be left",
                                               frame.length == 1 ? "this byte" : "these bytes"));
    }
    return explanation;
}

std::string Explainer::summary() const
{
    return fmt::format("{} right, {} broken, {} failure{} or unreadable line{}, {} other line{}", right_, broken_,
                       failures_, failures_ == 1 ? "" : "s", failures_ == 1 ? "" : "s", others_,
                       others_ == 1 ? "" : "s");
}

std::string explanationText(const Explanation& explanation, bool withLineNumber)
{
    std::string where = withLineNumber ? fmt::format("line {}", explanation.line) : std::string();
    if (!explanation.origin.empty())
        where += (where.empty() ? "" : ", ") + explanation.origin;
    if (!where.empty())
        where += ": ";
    if (!explanation.note.empty())
        return where + explanation.note + '\n';
    std::string text;
    for (const FrameReading& frame : explanation.frames)
        text += where + headline(frame) + framePicture(frame);
    return text;
}

nlohmann::ordered_json explanationJson(const Explanation& explanation)
{
    nlohmann::ordered_json frames = nlohmann::ordered_json::array();
    for (const FrameReading& frame : explanation.frames)
        frames.push_back(frameJson(frame));
    return {{"line", explanation.line},
            {"origin", explanation.origin},
            {"note", explanation.note},
            {"frames", std::move(frames)}};
}

std::string explainText(std::string_view text)
{
    Explainer explainer;
    std::string result;
    LineSplitter lines(
        [&](std::string_view line)
        {
            if (const std::optional<Explanation> explanation = explainer.explainLine(line))
                result += explanationText(*explanation, true);
        });
    lines.push(text);
    lines.finish();
    return result + explainer.summary() + '\n';
}
