// The faults of a simulated reader: how an answer is spoilt on its way out.
#ifndef ZUCOM_TOOLS_FAULT_PLAN_H
#define ZUCOM_TOOLS_FAULT_PLAN_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <zucom/zuProtocol.h>

// An answer as it goes onto the line.
struct Delivery
{
    std::chrono::milliseconds delay{0};            // before the first piece
    std::vector<std::vector<std::uint8_t>> pieces; // one write for each
    std::chrono::milliseconds pause{0};            // between pieces
    std::optional<std::chrono::milliseconds> away; // hang up instead of answering, and return after this time
    std::string faults;                            // names of those that struck, a blank before each
};

// Drawn afresh for every answer from one seeded source of randomness: the same seed and requests give the same faults.
class FaultPlan
{
public:
    // Each text is NAME[=NUMBER][@PERCENT]; throws UsageError for one that makes no sense.
    FaultPlan(const std::vector<std::string>& texts, std::uint64_t seed);

    Delivery deliveryOf(const ZuProt& answer, const ZuProt& request);

    static std::string help(); // a line for each fault

    using Random = std::mt19937_64;

private:
    struct Planned
    {
        std::size_t fault; // index in the table of faults
        int number;
        int percent;
    };

    static Planned plannedOf(const std::string& text);

    std::vector<Planned> planned_;
    Random random_;
};

#endif
