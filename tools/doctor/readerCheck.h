// Whether a reader answers, asked through the library.
#ifndef ZUCOM_TOOLS_READER_CHECK_H
#define ZUCOM_TOOLS_READER_CHECK_H

#include "tools/common/frameOptions.h"
#include "tools/common/lineOptions.h"
#include "tools/doctor/finding.h"

struct Ping
{
    FrameOptions frame;
    LineOptions line;
    std::string payload = "52 00";
};

void checkReader(const std::string& path, const Ping& ping, Findings& findings);

#endif
