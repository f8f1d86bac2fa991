// Says in words what bytes, a log line or a whole log hold. Without input or output of its own.
#ifndef ZUCOM_TOOLS_EXPLAIN_H
#define ZUCOM_TOOLS_EXPLAIN_H

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "tools/explain/frameReading.h"

// What one line of input holds: frames, or a note in words.
struct Explanation
{
    std::size_t line;   // of the input, from 1
    std::string origin; // "PH=0x1 at 0012.000345, received"; empty for plain bytes
    std::vector<FrameReading> frames;
    std::string note; // why there are no frames, or what an error line says
    bool failure;     // the note tells of something that went wrong, or the line cannot be read
};

// Takes lines one by one and counts what it saw.
class Explainer
{
public:
    // Nothing for the lines of a log that hold neither a frame nor an error.
    std::optional<Explanation> explainLine(std::string_view text);

    std::size_t rightFrames() const { return right_; }
    std::size_t brokenFrames() const { return broken_; }
    std::size_t failures() const { return failures_; } // error lines and lines that cannot be read
    std::string summary() const;                       // the counts in words

private:
    Explanation fromLog(const struct LogLine& line);
    Explanation fromBytes(std::string_view text, Direction direction);

    std::size_t lines_ = 0;
    std::size_t right_ = 0;
    std::size_t broken_ = 0;
    std::size_t failures_ = 0;
    std::size_t others_ = 0;
};

// The explanation as text with a picture of each frame, and as data.
std::string explanationText(const Explanation& explanation, bool withLineNumber);
nlohmann::ordered_json explanationJson(const Explanation& explanation);

// Everything about a text of any size and content, at once.
std::string explainText(std::string_view text);

#endif
