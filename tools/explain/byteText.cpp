// Bytes as people paste them: from a log, a debugger, a C array, a data sheet.
#include "tools/explain/byteText.h"

#include <fmt/format.h>
#include <zucom/zuHelper.h>

namespace
{

constexpr std::string_view betweenPairs = " \t\r\n\v\f,;:|-[]{}()";

int digitValue(char character)
{
    const std::uint8_t value = g_hexLookup.hexValue[static_cast<unsigned char>(character)];
    return value == 0xFF ? -1 : value;
}

std::string shown(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x20 && byte < 0x7F ? fmt::format("'{}'", character) : fmt::format("the byte 0x{:02X}", byte);
}

} // namespace

ByteText bytesFromText(std::string_view text)
{
    ByteText result;
    result.bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size();)
    {
        if (betweenPairs.find(text[i]) != std::string_view::npos)
        {
            ++i;
            continue;
        }
        if (text[i] == '0' && i + 1 < text.size() && (text[i + 1] == 'x' || text[i + 1] == 'X'))
        {
            i += 2;
        }
        const std::size_t at = std::min(i, text.size() - 1);
        const int high = digitValue(text[at]);
        const int low = i + 1 < text.size() ? digitValue(text[i + 1]) : -1;
        if (text[at] == '#')
            result.problem = "holds hidden bytes (##), so nothing can be checked";
        else if (high < 0)
            result.problem = fmt::format("no hexadecimal bytes: {} at column {}", shown(text[at]), at + 1);
        else if (low < 0)
            result.problem = fmt::format("a hexadecimal digit without a partner at column {}", at + 1);
        if (!result.problem.empty())
        {
            result.bytes.clear();
            return result;
        }
        result.bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
        i += 2;
    }
    if (result.bytes.empty())
        result.problem = "no bytes";
    return result;
}
