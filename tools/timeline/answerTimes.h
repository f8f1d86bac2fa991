// How long answers took: counts in steps of about 3 %, so that any number of them needs the same memory.
#ifndef ZUCOM_TOOLS_ANSWER_TIMES_H
#define ZUCOM_TOOLS_ANSWER_TIMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class AnswerTimes
{
public:
    struct Bar // answers that took at least from and less than to, in us
    {
        std::int64_t from;
        std::int64_t to;
        std::uint64_t count;
    };

    void add(std::int64_t duration); // us
    void add(const AnswerTimes& other);

    std::uint64_t count() const { return count_; }
    std::int64_t shortest() const { return shortest_; }
    std::int64_t longest() const { return longest_; }
    std::int64_t mean() const;
    std::int64_t quantile(double share) const;       // duration that this share of the answers did not exceed
    std::vector<Bar> bars(std::size_t atMost) const; // from the shortest to the longest, each as many steps wide

private:
    static constexpr std::size_t stepBits = 5; // 32 steps for each doubling
    static constexpr std::size_t steps = std::size_t{1} << stepBits;
    static constexpr std::size_t octaves = 44; // up to half a year

    static std::size_t stepOf(std::int64_t duration);
    static std::int64_t beginOf(std::size_t step);

    std::array<std::uint64_t, octaves * steps> counts_{};
    std::uint64_t count_ = 0;
    std::int64_t sum_ = 0;
    std::int64_t shortest_ = 0;
    std::int64_t longest_ = 0;
};

// A duration in the unit that suits it, for example "850 us", "12.4 ms" or "3.20 s".
std::string durationText(std::int64_t duration);

#endif
