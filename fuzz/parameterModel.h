/**
 * @file
 * The grammar of parameter text once more, for comparison: every entry of a section.
 */
#ifndef FUZZ_PARAMETER_MODEL_H
#define FUZZ_PARAMETER_MODEL_H

#include <string>
#include <string_view>
#include <vector>

namespace parameterModel
{
struct Entry
{
    std::string tag, value;
    bool operator==(const Entry&) const = default;
};

/** The body of the first section of a name. */
inline std::string section(const std::string& text, const std::string& name)
{
    const std::size_t marker = text.find("[" + name + "]");
    if (marker == std::string::npos)
        return {};
    const std::size_t begin = marker + name.size() + 2;
    return text.substr(begin, std::min(text.find('[', begin), text.size()) - begin);
}

/** What one entry, without its separator, holds. */
inline Entry entry(std::string_view text, bool lowerCase)
{
    const std::string_view white = " \t\n\v\f\r";
    Entry entry;
    const std::size_t equals = text.find('=');
    for (const char c : text.substr(0, equals))
        if (white.find(c) == std::string_view::npos)
            entry.tag += lowerCase && c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    bool quoted = false;
    for (const char c : equals == std::string_view::npos ? std::string_view() : text.substr(equals + 1))
        if (c == '"')
            quoted = !quoted;
        else if (quoted || white.find(c) == std::string_view::npos)
            entry.value += c;
    return entry;
}

/** The entries of a body; the separator is no quote and no equals sign. */
inline std::vector<Entry> entries(std::string_view body, char separator, bool lowerCase)
{
    std::vector<Entry> all;
    std::size_t begin = 0;
    bool inValue = false;
    bool quoted = false;
    for (std::size_t i = 0; i <= body.size(); ++i)
    {
        const bool ends = i == body.size() || (body[i] == separator && !quoted);
        if (ends)
        {
            all.push_back(entry(body.substr(begin, i - begin), lowerCase));
            begin = i + 1;
            inValue = quoted = false;
        }
        else if (body[i] == '"' && inValue)
            quoted = !quoted;
        else if (body[i] == '=')
            inValue = true;
    }
    return all;
}
} // namespace parameterModel

#endif
