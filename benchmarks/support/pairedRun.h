// Compares contenders on a machine that is never quiet: they take turns within each round, costs are compared within
// the round, and the median over the rounds counts.
#ifndef BENCHMARKS_PAIRED_RUN_H
#define BENCHMARKS_PAIRED_RUN_H

#include <ctime>
#include <functional>
#include <string>
#include <vector>

class PairedRun
{
public:
    /** Does a piece of work and returns what it cost, in any unit. */
    using Work = std::function<double()>;

    void add(const std::string& name, Work work);
    void run(int rounds);

    /** Median over the rounds of the cost of @p name in terms of @p base. */
    double ratio(const std::string& name, const std::string& base) const;
    /** Median cost. */
    double cost(const std::string& name) const;

private:
    struct Contender
    {
        std::string name;
        Work work;
        std::vector<double> costs;
    };

    const std::vector<double>& costsOf(const std::string& name) const;

    std::vector<Contender> contenders;
};

/** Nanoseconds that @p work takes by @p clock: CLOCK_THREAD_CPUTIME_ID or CLOCK_MONOTONIC. */
double timed(clockid_t clock, const std::function<void()>& work);

/** Prints a measured value for the report. */
void report(const std::string& key, double value);

#endif
