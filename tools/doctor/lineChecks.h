// What the driver of a serial line says when it is asked with a descriptor of our own.
#ifndef ZUCOM_TOOLS_LINE_CHECKS_H
#define ZUCOM_TOOLS_LINE_CHECKS_H

#include <string>

#include "tools/doctor/finding.h"

struct LineQuestions
{
    bool change = false;     // settings may be tried, because nobody else uses the line
    bool rs485 = false;      // RS485 is asked for
    bool modemLines = false; // the modem lines are asked for
};

// Opens the device, asks, puts everything back and closes it. Returns whether it is a serial line that opens.
bool checkLine(const std::string& path, const LineQuestions& questions, Findings& findings);

#endif
