// How fast is the check sum beside the usual one with a single table?
#include <array>
#include <vector>

#include <benchmark/benchmark.h>

#include <zucom/zuProtocol.h>

namespace
{
constexpr std::array<uint16_t, 256> makeTable()
{
    std::array<uint16_t, 256> table{};
    for (unsigned i = 0; i < table.size(); ++i)
    {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0x8408 : crc >> 1;
        table[i] = static_cast<uint16_t>(crc);
    }
    return table;
}
constexpr std::array<uint16_t, 256> table = makeTable();

[[gnu::noinline]] uint16_t oneTable(const uint8_t* data, std::size_t size, bool swap)
{
    unsigned crc = 0xFFFF;
    for (std::size_t i = 0; i < size; ++i)
        crc = crc >> 8 ^ table[(crc ^ data[i]) & 0xFF];
    return static_cast<uint16_t>(swap ? crc >> 8 | crc << 8 : crc);
}

void crc(benchmark::State& state, uint16_t (*sum)(const uint8_t*, std::size_t, bool))
{
    std::vector<uint8_t> data(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<uint8_t>(i * 37);
    if (sum(data.data(), data.size(), true) != oneTable(data.data(), data.size(), true))
        state.SkipWithError("the sums differ");
    for ([[maybe_unused]] auto _ : state)
    {
        benchmark::DoNotOptimize(data.data());
        benchmark::DoNotOptimize(sum(data.data(), data.size(), true));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

BENCHMARK_CAPTURE(crc, oneTable, oneTable)->Arg(6)->Arg(250)->Arg(32768);
BENCHMARK_CAPTURE(crc, zucom, ZuProt::crc16CheckSum)->Arg(6)->Arg(250)->Arg(32768);
} // namespace
