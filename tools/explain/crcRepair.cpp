// Finds the one byte that was lost, put in or changed on the way, by the check sum.
#include "tools/explain/crcRepair.h"

#include <array>

#include <zucom/zuProtocol.h>

namespace
{

// The check sum as a machine that takes a byte and steps from one state to the next, and back again. Running it
// forward over the bytes before a place and backward over those behind it tells which byte joins both ends.
class CrcMachine
{
public:
    CrcMachine()
    {
        for (unsigned index = 0; index < 256; ++index)
        {
            const auto byte = static_cast<std::uint8_t>(~index); // from the start state FFFF it looks up this index
            const auto entry = static_cast<std::uint16_t>(ZuProt::crc16CheckSum(&byte, 1, false) ^ 0x00FF);
            table_[index] = entry;
            indexByHigh_[entry >> 8] = static_cast<std::uint8_t>(index); // no two entries share a high byte
        }
    }

    std::uint16_t forward(std::uint16_t state, std::uint8_t byte) const
    {
        return static_cast<std::uint16_t>(state >> 8 ^ table_[(state ^ byte) & 0xFF]);
    }

    std::uint16_t backward(std::uint16_t state, std::uint8_t byte) const
    {
        const std::uint8_t index = indexByHigh_[state >> 8];
        return static_cast<std::uint16_t>((state ^ table_[index]) << 8 | (index ^ byte));
    }

    bool joins(std::uint16_t from, std::uint16_t to, std::uint8_t& byte) const // the byte that steps from one to other
    {
        const std::uint8_t index = indexByHigh_[to >> 8];
        byte = static_cast<std::uint8_t>(index ^ from);
        return forward(from, byte) == to;
    }

private:
    std::array<std::uint16_t, 256> table_{};
    std::array<std::uint8_t, 256> indexByHigh_{};
};

constexpr std::uint16_t startState = 0xFFFF;
constexpr std::uint16_t endState = 0; // behind the check sum of a right frame

// Collects the repairs that hold when the whole frame is looked at.
class Collector
{
public:
    Collector(ByteView bytes, std::size_t atMost) : bytes_(bytes), atMost_(atMost) {}

    void propose(Repair repair)
    {
        if (found_.size() < atMost_ && isWholeFrame(repaired(bytes_, repair)))
            found_.push_back(repair);
    }

    std::vector<Repair> found() const { return found_; }

private:
    ByteView bytes_;
    std::size_t atMost_;
    std::vector<Repair> found_;
};

} // namespace

Bytes repaired(ByteView bytes, const Repair& repair)
{
    Bytes result(bytes.begin(), bytes.end());
    const auto at = result.begin() + static_cast<std::ptrdiff_t>(repair.offset);
    if (repair.kind == Repair::insert)
        result.insert(at, repair.value);
    else if (repair.kind == Repair::drop)
        result.erase(at);
    else
        *at = repair.value;
    return result;
}

std::vector<Repair> findRepairs(ByteView bytes, std::size_t atMost)
{
    static const CrcMachine crc;
    const std::size_t count = bytes.size();
    Collector collector(bytes, atMost);
    if (count > longestFrame)
        return {};

    std::vector<std::uint16_t> before(count + 1, startState); // state reached in front of each byte
    std::vector<std::uint16_t> needed(count + 1, endState);   // state that leads from there to a right end
    for (std::size_t i = 0; i < count; ++i)
        before[i + 1] = crc.forward(before[i], bytes[i]);
    for (std::size_t i = count; i > 0; --i)
        needed[i - 1] = crc.backward(needed[i], bytes[i - 1]);

    for (std::size_t i = 0; i <= count; ++i)
    {
        std::uint8_t byte = 0;
        if (crc.joins(before[i], needed[i], byte) && (i == 0 || bytes[i - 1] != byte))
            collector.propose({Repair::insert, i, byte});
        if (i < count && before[i] == needed[i + 1] && (i == 0 || bytes[i - 1] != bytes[i]))
            collector.propose({Repair::drop, i, bytes[i]});
        if (i < count && crc.joins(before[i], needed[i + 1], byte) && byte != bytes[i])
            collector.propose({Repair::change, i, byte});
    }
    return collector.found();
}
