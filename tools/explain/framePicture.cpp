// A frame as a picture for the terminal: one box for each field.
#include "tools/explain/framePicture.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

namespace
{

constexpr std::size_t bytesInBox = 8; // of a longer field the box shows beginning and end

std::string boxText(const FrameField& field)
{
    constexpr std::size_t width = 3; // of a byte with its blank
    if (field.length <= bytesInBox)
        return field.bytes;
    const std::size_t half = bytesInBox / 2 * width - 1;
    return field.bytes.substr(0, half) + " .. " + field.bytes.substr(field.bytes.size() - half);
}

std::string repeated(std::string_view text, std::size_t count)
{
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

struct Corners
{
    const char* left;
    const char* middle;
    const char* right;
};

std::string border(const std::vector<std::size_t>& widths, const Corners& corners)
{
    std::string line = "  ";
    for (std::size_t i = 0; i < widths.size(); ++i)
        line += (i == 0 ? corners.left : corners.middle) + repeated("─", widths[i] + 2);
    return line + corners.right + '\n';
}

} // namespace

std::string framePicture(const FrameReading& reading)
{
    std::vector<std::size_t> widths;
    std::string names = "  ";
    std::string bytes = "  ";
    std::string meanings;
    for (const FrameField& field : reading.fields)
    {
        const std::string text = boxText(field);
        const std::size_t width = std::max(text.size(), std::string_view(field.name).size());
        widths.push_back(width);
        names += fmt::format("│ {:^{}} ", field.name, width);
        bytes += fmt::format("│ {:^{}} ", text, width);
        if (!field.meaning.empty())
            meanings += fmt::format("  {:>5}  {:<9}  {}\n", field.offset, field.name, field.meaning);
    }
    std::string picture;
    if (!widths.empty())
        picture = border(widths, {"┌", "┬", "┐"}) + names + "│\n" + bytes + "│\n" + border(widths, {"└", "┴", "┘"}) +
                  meanings;
    for (const std::string& fault : reading.faults)
        picture += "  Fault:   " + fault + '\n';
    for (const std::string& remedy : reading.remedies)
        picture += "  Perhaps: " + remedy + '\n';
    return picture;
}
