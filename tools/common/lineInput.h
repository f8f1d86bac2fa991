// Lines of a file or of standard input.
#ifndef ZUCOM_TOOLS_LINE_INPUT_H
#define ZUCOM_TOOLS_LINE_INPUT_H

#include <string>

#include "tools/common/lineSplitter.h"

// Reads a file, or standard input for "-", piece by piece into the splitter. Throws Refused when that fails.
void readLines(const std::string& path, LineSplitter& splitter);

#endif
