// The options that say how the line to a reader is set.
#ifndef ZUCOM_TOOLS_LINE_OPTIONS_H
#define ZUCOM_TOOLS_LINE_OPTIONS_H

#include <string>

#include "tools/common/options.h"

class ReaderPort;

struct LineOptions
{
    int baud = 9600;
    std::string frame = "8E1";
    int timeout = 1000; // ms
    std::string mode;   // empty leaves the line in the mode it is in
};

// Adds --baud, --frame, --timeout and --mode.
void addLineOptions(Options& options, LineOptions& line);

// Sets a port so. Throws UsageError for values that make no sense, Refused for those that the driver refuses.
void applyLine(ReaderPort& port, const LineOptions& line);

// Sets one parameter, unless the port has that value already: a driver may refuse what changes nothing.
// Returns 0, or the library's code.
int applyParameter(ReaderPort& port, const char* key, const std::string& value);

#endif
