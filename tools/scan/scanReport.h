// How the result of a scan is shown.
#ifndef ZUCOM_TOOLS_SCAN_REPORT_H
#define ZUCOM_TOOLS_SCAN_REPORT_H

#include <string>

#include "tools/scan/scanner.h"

// With its settings to paste, for the library and for asking it again.
std::string readerText(const FoundReader& reader, const std::string& device, const ScanRequest& request);
std::string summaryText(const ScanResult& result);
std::string scanJson(const ScanResult& result);

#endif
