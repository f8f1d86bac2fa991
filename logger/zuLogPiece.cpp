// The texts of log pieces.

#include "logger/zuLogPiece.h"

#include <array>
#include <charconv>
#include <cstring>
#include <limits>

namespace
{
constexpr std::size_t longestNumber = std::numeric_limits<int64_t>::digits10 + 2; // with its sign
constexpr std::size_t longestErrno = 64;
} // namespace

void appendText(std::string& out, std::string_view value) { out += value; }

void appendText(std::string& out, int64_t value)
{
    std::array<char, longestNumber> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    out.append(digits.data(), end);
}

void appendText(std::string& out, ZuDump value)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t begin = out.size();
    out.resize(begin + 3 * value.count);
    char* position = out.data() + begin;
    for (std::size_t i = 0; i < value.count; ++i)
    {
        *position++ = digits[value.bytes[i] >> 4];
        *position++ = digits[value.bytes[i] & 0x0F];
        *position++ = ' ';
    }
}

void appendText(std::string& out, ZuErrno value)
{
    std::array<char, longestErrno> memory;
    out += ::strerror_r(value.value, memory.data(), memory.size());
}

std::size_t textRoom(std::string_view value) { return value.size(); }

std::size_t textRoom(int64_t) { return longestNumber; }

std::size_t textRoom(ZuDump value) { return 3 * value.count; }

std::size_t textRoom(ZuErrno) { return longestErrno; }
