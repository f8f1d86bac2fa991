// Which lines of a log are wanted.
#ifndef ZUCOM_TOOLS_LINE_FILTER_H
#define ZUCOM_TOOLS_LINE_FILTER_H

#include <string>
#include <string_view>

struct LineFilter
{
    int handle = 0;           // of the port; 0 for all
    std::string kind = "all"; // "all", "trace", "error", or "frames" for transmits and answers
    std::string text;         // must be in the line

    bool wants(std::string_view line) const;
};

#endif
