// Asks for readers, one line setting and bus address after the other.
#ifndef ZUCOM_TOOLS_SCANNER_H
#define ZUCOM_TOOLS_SCANNER_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/common/frameOptions.h"
#include "tools/scan/scanPlan.h"

class ReaderPort;
class StopSignal;

struct FoundReader
{
    LineSetting line;
    int address;
    double milliseconds; // until it answered
};

struct ScanResult
{
    std::vector<FoundReader> found;
    std::size_t asked = 0;          // requests sent
    std::size_t settings = 0;       // line settings that were to be tried
    std::size_t refused = 0;        // of these, refused by the driver and skipped
    std::vector<LineSetting> noise; // where bytes came that are no answer: something is there, at other settings
    bool stopped = false;           // before the end, by Ctrl-C
};

struct ScanRequest
{
    std::vector<ScanStep> steps;
    std::string kind; // of frame
    std::vector<std::uint8_t> payload;
    bool all = false; // go on after the first reader
};

struct ScanEvents
{
    std::function<void(std::size_t done, const LineSetting& line, int address)> asking;
    std::function<void(const FoundReader& reader)> found;
};

// The port's TIMEOUT is what an address without a reader costs. Throws Refused when the device fails.
ScanResult scan(ReaderPort& port, const ScanRequest& request, const StopSignal& stop, const ScanEvents& events);

std::size_t numberOfQuestions(const std::vector<ScanStep>& steps);

#endif
