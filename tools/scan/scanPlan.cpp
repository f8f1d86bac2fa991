// In which order a scan tries what a reader may be set to.
#include "tools/scan/scanPlan.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr int everyReader = 255;

// The places in both lists together say how likely a pair is: the second speed with the first frame comes as early as
// the first speed with the second frame.
std::vector<LineSetting> likeliestFirst(const std::vector<int>& speeds, const std::vector<std::string>& frames)
{
    std::vector<LineSetting> settings;
    for (std::size_t sum = 0; sum + 1 < speeds.size() + frames.size(); ++sum)
        for (std::size_t frame = 0; frame < frames.size() && frame <= sum; ++frame)
            if (sum - frame < speeds.size())
                settings.push_back({speeds[sum - frame], frames[frame]});
    return settings;
}

} // namespace

std::vector<ScanStep> planScan(const std::vector<int>& speeds, const std::vector<std::string>& frames,
                               const std::vector<int>& addresses)
{
    std::vector<int> single;
    std::ranges::remove_copy(addresses, std::back_inserter(single), everyReader);
    const std::vector<int> broadcast(addresses.size() - single.size(), everyReader);

    std::vector<ScanStep> steps;
    for (const std::vector<int>& asked : {broadcast, single})
        for (const LineSetting& line : likeliestFirst(speeds, frames))
            if (!asked.empty())
                steps.push_back({line, asked});
    return steps;
}
