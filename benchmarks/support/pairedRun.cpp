#include "benchmarks/support/pairedRun.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace
{
double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double now(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}
} // namespace

void PairedRun::add(const std::string& name, Work work) { contenders.push_back({name, std::move(work), {}}); }

void PairedRun::run(int rounds)
{
    for (Contender& contender : contenders)
        contender.work(); // warm-up, not counted
    for (int round = 0; round < rounds; ++round)
    {
        for (Contender& contender : contenders)
            contender.costs.push_back(contender.work());
        // Nobody always follows the same neighbour's caches at the same place of the round.
        std::rotate(contenders.begin(), contenders.begin() + 1, contenders.end());
    }
}

double PairedRun::ratio(const std::string& name, const std::string& base) const
{
    std::vector<double> ratios = costsOf(name);
    const std::vector<double>& baseCosts = costsOf(base);
    std::transform(ratios.begin(), ratios.end(), baseCosts.begin(), ratios.begin(), std::divides<>());
    return median(std::move(ratios));
}

double PairedRun::cost(const std::string& name) const { return median(costsOf(name)); }

const std::vector<double>& PairedRun::costsOf(const std::string& name) const
{
    const auto found = std::find_if(contenders.begin(), contenders.end(),
                                    [&](const Contender& contender) { return contender.name == name; });
    if (found == contenders.end())
        throw std::invalid_argument("no contender " + name);
    return found->costs;
}

double timed(clockid_t clock, const std::function<void()>& work)
{
    const double start = now(clock);
    work();
    return now(clock) - start;
}

void report(const std::string& key, double value)
{
    std::printf("%s\t%.4f\n", key.c_str(), value);
    std::fflush(stdout);
}
