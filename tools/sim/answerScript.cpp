// What the simulated reader answers to which request.
#include "tools/sim/answerScript.h"

#include <algorithm>

#include <fmt/format.h>

#include "tools/common/failure.h"
#include "tools/common/hexText.h"

namespace
{

std::string trimmed(const std::string& text)
{
    constexpr const char* blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

AnswerScript::AnswerScript(std::istream& text, const std::string& name)
{
    std::string line;
    for (int number = 1; std::getline(text, line); ++number)
    {
        line = trimmed(line.substr(0, line.find('#')));
        if (line.empty())
            continue;
        std::optional<Rule> rule = ruleOf(line);
        if (!rule)
            throw UsageError(fmt::format("{}:{}: expected REQUEST => ANSWER, found: {}", name, number, line));
        rules_.push_back(*std::move(rule));
    }
}

std::optional<AnswerScript::Rule> AnswerScript::ruleOf(const std::string& line)
{
    constexpr const char* arrow = "=>";
    const std::size_t middle = line.find(arrow);
    if (middle == std::string::npos)
        return std::nullopt;
    std::string request = trimmed(line.substr(0, middle));
    const std::string answer = trimmed(line.substr(middle + 2));

    Rule rule;
    rule.isPrefix = request.ends_with('*');
    if (rule.isPrefix)
        request.pop_back();
    const auto requestBytes = bytesFromHex(request);
    if (!requestBytes || (requestBytes->empty() && !rule.isPrefix))
        return std::nullopt;
    rule.request = *requestBytes;
    if (answer == "silence")
        return rule;
    rule.answer = bytesFromHex(answer);
    return rule.answer && !rule.answer->empty() ? std::optional(rule) : std::nullopt;
}

bool AnswerScript::Rule::fits(std::span<const std::uint8_t> payload) const
{
    if (payload.size() < request.size() || (payload.size() > request.size() && !isPrefix))
        return false;
    return std::ranges::equal(request, payload.first(request.size()));
}

std::optional<std::vector<std::uint8_t>> AnswerScript::answerTo(std::span<const std::uint8_t> request) const
{
    const auto rule = std::ranges::find_if(rules_, [&](const Rule& candidate) { return candidate.fits(request); });
    if (rule != rules_.end())
        return rule->answer;
    std::vector<std::uint8_t> answer{request.front(), 0};
    answer.insert(answer.end(), request.begin() + 1, request.end());
    return answer;
}
