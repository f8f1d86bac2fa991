// The faults of a simulated reader: how an answer is spoilt on its way out.
#include "tools/sim/faultPlan.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

#include <fmt/format.h>

#include "tools/common/failure.h"
#include "tools/common/frameBytes.h"

namespace
{

using std::chrono::milliseconds;

// What a fault may look at and change. Until the answer is cut into pieces, it is the one piece of the delivery.
struct Spoiling
{
    Delivery& delivery;
    const ZuProt& answer;
    const ZuProt& request;
    int number;
    FaultPlan::Random& random;

    std::vector<std::uint8_t>& bytes() const { return delivery.pieces.front(); }
    std::size_t below(std::size_t limit) const { return static_cast<std::size_t>(random() % limit); }
};

void foreignAddress(const Spoiling& spoiling)
{
    const std::vector<std::uint8_t> payload = payloadOfFrame(spoiling.answer);
    const int address = spoiling.number >= 0 ? spoiling.number : (spoiling.answer.busAddrOfProtocol() + 1) % 255;
    ZuProt frame;
    frame.setPayload(payload.data(), payload.size(), spoiling.answer.generation(), directionResponse,
                     static_cast<std::uint8_t>(address));
    spoiling.bytes() = bytesOfFrame(frame);
}

void wrongCrc(const Spoiling& spoiling) { spoiling.bytes().back() ^= 0xFF; }

void flippedBit(const Spoiling& spoiling)
{
    const std::size_t bit = spoiling.below(spoiling.bytes().size() * 8);
    spoiling.bytes()[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
}

void lostByte(const Spoiling& spoiling)
{
    const std::size_t index = spoiling.below(spoiling.bytes().size());
    spoiling.bytes().erase(spoiling.bytes().begin() + static_cast<std::ptrdiff_t>(index));
}

void twoFrames(const Spoiling& spoiling)
{
    const std::vector<std::uint8_t> again = spoiling.bytes();
    spoiling.bytes().insert(spoiling.bytes().end(), again.begin(), again.end());
}

void garbage(const Spoiling& spoiling)
{
    std::vector<std::uint8_t> noise(static_cast<std::size_t>(spoiling.number));
    std::ranges::generate(noise, [&] { return static_cast<std::uint8_t>(spoiling.random()); });
    spoiling.bytes().insert(spoiling.bytes().begin(), noise.begin(), noise.end());
}

void echo(const Spoiling& spoiling)
{
    const std::vector<std::uint8_t> request = bytesOfFrame(spoiling.request);
    spoiling.bytes().insert(spoiling.bytes().begin(), request.begin(), request.end());
}

void pieces(const Spoiling& spoiling)
{
    std::span<const std::uint8_t> rest = spoiling.bytes();
    std::vector<std::vector<std::uint8_t>> cut;
    while (!rest.empty())
    {
        const std::size_t size = 1 + spoiling.below(std::min<std::size_t>(rest.size(), 4));
        cut.emplace_back(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size));
        rest = rest.subspan(size);
    }
    spoiling.delivery.pieces = std::move(cut);
    spoiling.delivery.pause = milliseconds(spoiling.number);
}

void delay(const Spoiling& spoiling) { spoiling.delivery.delay = milliseconds(spoiling.number); }

void never(const Spoiling& spoiling) { spoiling.delivery.pieces.clear(); }

void hangUp(const Spoiling& spoiling) { spoiling.delivery.away = milliseconds(spoiling.number); }

struct Fault
{
    std::string_view name;
    int number;  // what NUMBER is when it is not given
    int highest; // 0: takes no number
    void (*spoil)(const Spoiling&);
    std::string_view help;
};

// In the order in which they act: first the frame, then its bytes, then what surrounds it, at last the delivery.
constexpr Fault faults[] = {
    {"foreign-address", -1, 254, foreignAddress, "answers from address NUMBER, else from the next one"},
    {"wrong-crc", 0, 0, wrongCrc, "spoils the check sum"},
    {"flipped-bit", 0, 0, flippedBit, "turns one bit over"},
    {"lost-byte", 0, 0, lostByte, "leaves one byte out"},
    {"two-frames", 0, 0, twoFrames, "sends the answer twice at once"},
    {"garbage", 8, 4096, garbage, "sends NUMBER (8) bytes of noise before the answer"},
    {"echo", 0, 0, echo, "sends the request back before the answer"},
    {"pieces", 5, 60000, pieces, "sends 1 to 4 bytes at a time, NUMBER (5) ms apart"},
    {"delay", 300, 60000, delay, "answers NUMBER (300) ms late"},
    {"never", 0, 0, never, "does not answer"},
    {"hang-up", 200, 60000, hangUp, "hangs up and returns after NUMBER (200) ms, with a device of another name"},
};

// The number behind a mark at the end of a text, which is cut off; nothing when the mark is not there.
std::optional<int> cutNumber(std::string& text, char mark, int highest)
{
    const std::size_t at = text.find(mark);
    if (at == std::string::npos)
        return std::nullopt;
    const std::string digits = text.substr(at + 1);
    text.erase(at);
    if (digits.empty() || digits.size() > 6 || digits.find_first_not_of("0123456789") != std::string::npos ||
        std::stoi(digits) > highest)
        throw UsageError(fmt::format("fault {}: {}{} is no number from 0 to {}", text, mark, digits, highest));
    return std::stoi(digits);
}

} // namespace

FaultPlan::FaultPlan(const std::vector<std::string>& texts, std::uint64_t seed) : random_(seed)
{
    std::ranges::transform(texts, std::back_inserter(planned_), plannedOf);
    std::ranges::stable_sort(planned_, {}, &Planned::fault);
}

FaultPlan::Planned FaultPlan::plannedOf(const std::string& text)
{
    std::string name = text;
    const int percent = cutNumber(name, '@', 100).value_or(100);
    const std::string_view bare = std::string_view(name).substr(0, name.find('='));
    const auto* fault = std::ranges::find(faults, bare, &Fault::name);
    if (fault == std::end(faults))
        throw UsageError(fmt::format("no fault is called {}", bare));
    if (fault->highest == 0 && bare.size() < name.size())
        throw UsageError(fmt::format("fault {} takes no number", bare));
    const std::optional<int> number = cutNumber(name, '=', fault->highest);
    return {static_cast<std::size_t>(fault - faults), number.value_or(fault->number), percent};
}

Delivery FaultPlan::deliveryOf(const ZuProt& answer, const ZuProt& request)
{
    Delivery delivery;
    delivery.pieces.push_back(bytesOfFrame(answer));
    for (const Planned& planned : planned_)
        if (static_cast<int>(random_() % 100) < planned.percent)
        {
            const Fault& fault = faults[planned.fault];
            fault.spoil({delivery, answer, request, planned.number, random_});
            delivery.faults.append(" ").append(fault.name);
        }
    return delivery;
}

std::string FaultPlan::help()
{
    std::string text;
    for (const Fault& fault : faults)
        text += fmt::format("  {:<16}{}\n", fault.name, fault.help);
    return text;
}
