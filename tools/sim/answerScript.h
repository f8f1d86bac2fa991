// What the simulated reader answers to which request.
#ifndef ZUCOM_TOOLS_ANSWER_SCRIPT_H
#define ZUCOM_TOOLS_ANSWER_SCRIPT_H

#include <cstdint>
#include <istream>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Rules, one a line, "REQUEST => ANSWER", both payloads in hexadecimal; the first rule that fits a request decides.
// A request ending in "*" stands for every payload that begins so; the answer "silence" is none at all; "#" begins a
// comment. A request that no rule fits, with no rules every request, is answered with its own command, the status 00
// and the rest of its payload.
class AnswerScript
{
public:
    AnswerScript() = default;

    // Throws UsageError with name and line number where a line cannot be read.
    AnswerScript(std::istream& text, const std::string& name);

    // The answer's payload; nothing for silence.
    std::optional<std::vector<std::uint8_t>> answerTo(std::span<const std::uint8_t> request) const;

private:
    struct Rule
    {
        std::vector<std::uint8_t> request;
        bool isPrefix = false;
        std::optional<std::vector<std::uint8_t>> answer;

        bool fits(std::span<const std::uint8_t> payload) const;
    };

    static std::optional<Rule> ruleOf(const std::string& line);

    std::vector<Rule> rules_;
};

#endif
