// In which order a scan tries what a reader may be set to.
#ifndef ZUCOM_TOOLS_SCAN_PLAN_H
#define ZUCOM_TOOLS_SCAN_PLAN_H

#include <string>
#include <vector>

struct LineSetting
{
    int baud;
    std::string frame;
};

struct ScanStep
{
    LineSetting line;
    std::vector<int> addresses; // to be asked at this setting
};

// Every speed with every frame, the likeliest pairs first when the lists begin with the likeliest. Address 255, which
// every reader answers, is asked at all settings before any other address is asked at one.
std::vector<ScanStep> planScan(const std::vector<int>& speeds, const std::vector<std::string>& frames,
                               const std::vector<int>& addresses);

#endif
