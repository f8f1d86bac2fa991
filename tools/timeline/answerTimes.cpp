// How long answers took: counts in steps of about 3 %, so that any number of them needs the same memory.
#include "tools/timeline/answerTimes.h"

#include <algorithm>
#include <bit>

#include <fmt/format.h>

void AnswerTimes::add(std::int64_t duration)
{
    duration = std::max<std::int64_t>(duration, 0);
    shortest_ = count_ == 0 ? duration : std::min(shortest_, duration);
    longest_ = std::max(longest_, duration);
    ++count_;
    sum_ += duration;
    ++counts_[stepOf(duration)];
}

void AnswerTimes::add(const AnswerTimes& other)
{
    if (other.count_ == 0)
        return;
    shortest_ = count_ == 0 ? other.shortest_ : std::min(shortest_, other.shortest_);
    longest_ = std::max(longest_, other.longest_);
    count_ += other.count_;
    sum_ += other.sum_;
    std::transform(counts_.begin(), counts_.end(), other.counts_.begin(), counts_.begin(), std::plus<>());
}

std::int64_t AnswerTimes::mean() const { return count_ == 0 ? 0 : sum_ / static_cast<std::int64_t>(count_); }

std::int64_t AnswerTimes::quantile(double share) const
{
    const double wanted = share * static_cast<double>(count_);
    std::uint64_t seen = 0;
    for (std::size_t step = 0; step < counts_.size(); ++step)
    {
        seen += counts_[step];
        if (seen > 0 && static_cast<double>(seen) >= wanted)
            return std::clamp(beginOf(step + 1) - 1, shortest_, longest_);
    }
    return longest_;
}

std::vector<AnswerTimes::Bar> AnswerTimes::bars(std::size_t atMost) const
{
    if (count_ == 0)
        return {};
    const std::size_t first = stepOf(shortest_);
    const std::size_t last = stepOf(longest_);
    std::size_t width = 1; // in steps
    while (last / width - first / width >= atMost)
        width *= 2;
    std::vector<Bar> result;
    for (std::size_t bar = first / width; bar <= last / width; ++bar)
    {
        const auto begin = counts_.begin() + static_cast<std::ptrdiff_t>(bar * width);
        const auto end = counts_.begin() + static_cast<std::ptrdiff_t>(std::min((bar + 1) * width, counts_.size()));
        std::uint64_t sum = 0;
        std::for_each(begin, end, [&](std::uint64_t count) { sum += count; });
        if (beginOf((bar + 1) * width) > beginOf(bar * width)) // below 32 us steps are narrower than the unit
            result.push_back({beginOf(bar * width), beginOf((bar + 1) * width), sum});
    }
    return result;
}

std::size_t AnswerTimes::stepOf(std::int64_t duration)
{
    if (duration <= 0)
        return 0;
    const auto value = static_cast<std::uint64_t>(duration);
    const auto octave = static_cast<std::size_t>(std::bit_width(value)) - 1;
    if (octave >= octaves)
        return octaves * steps - 1;
    const std::uint64_t scaled = octave >= stepBits ? value >> (octave - stepBits) : value << (stepBits - octave);
    return octave * steps + (scaled & (steps - 1));
}

std::int64_t AnswerTimes::beginOf(std::size_t step) // the shortest duration that belongs to a step
{
    const std::size_t octave = std::min(step / steps, octaves);
    const std::uint64_t scaled = steps + step % steps;
    if (octave >= stepBits)
        return static_cast<std::int64_t>(scaled << (octave - stepBits));
    const std::size_t shift = stepBits - octave;
    return step == 0 ? 0 : static_cast<std::int64_t>((scaled + (std::uint64_t{1} << shift) - 1) >> shift);
}

std::string durationText(std::int64_t duration)
{
    if (duration < 1000)
        return fmt::format("{} us", duration);
    const double value = static_cast<double>(duration);
    if (duration < 1000000)
        return fmt::format("{:.3g} ms", value / 1e3);
    if (duration < 120 * std::int64_t{1000000})
        return fmt::format("{:.3g} s", value / 1e6);
    return fmt::format("{:.1f} min", value / 6e7);
}
