// Character classes of the POSIX locale. The functions of <cctype> follow the locale that the application has set,
// and what a configuration or a frame text means must not depend on that.
#pragma once

namespace asciiText
{
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr char toUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
} // namespace asciiText
