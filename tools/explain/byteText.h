// Bytes as people paste them: from a log, a debugger, a C array, a data sheet.
#ifndef ZUCOM_TOOLS_BYTE_TEXT_H
#define ZUCOM_TOOLS_BYTE_TEXT_H

#include <string>
#include <string_view>

#include "tools/explain/frameLayout.h"

struct ByteText
{
    Bytes bytes;
    std::string problem; // why the text is no bytes; empty when it is
};

// Takes pairs of hexadecimal digits, "0x" before a pair allowed, with blanks, commas, semicolons, colons, bars, dashes
// and brackets anywhere between pairs.
ByteText bytesFromText(std::string_view text);

#endif
