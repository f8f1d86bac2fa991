// What do building, checking and printing a frame cost?
#include <vector>

#include <benchmark/benchmark.h>

#include <zucom/zuProtocol.h>

namespace
{
constexpr uint8_t advanced = 2;
constexpr uint8_t anyReader = 255;

std::vector<uint8_t> payloadFor(const benchmark::State& state)
{
    std::vector<uint8_t> payload(static_cast<std::size_t>(state.range(0)) - 6, 0x5A);
    if (!payload.empty())
        payload[0] = 0x52;
    return payload;
}

void build(benchmark::State& state)
{
    const std::vector<uint8_t> payload = payloadFor(state);
    static ZuProt frame;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(frame.setPayload(payload.data(), payload.size(), advanced, 0, anyReader));
}

void check(benchmark::State& state)
{
    const std::vector<uint8_t> payload = payloadFor(state);
    static ZuProt frame;
    frame.setPayload(payload.data(), payload.size(), advanced, 0, anyReader);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(frame.isValidProtocol());
}

void print(benchmark::State& state)
{
    const std::vector<uint8_t> payload = payloadFor(state);
    static ZuProt frame;
    frame.setPayload(payload.data(), payload.size(), advanced, 0, anyReader);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(frame.protocolToString());
}

void parse(benchmark::State& state)
{
    const std::vector<uint8_t> payload = payloadFor(state);
    static ZuProt frame;
    frame.setPayload(payload.data(), payload.size(), advanced, 0, anyReader);
    const std::string text = frame.protocolToString();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(frame.stringToProtocol(text));
}

BENCHMARK(build)->Arg(8)->Arg(250)->Arg(32000);
BENCHMARK(check)->Arg(8)->Arg(250)->Arg(32000);
BENCHMARK(print)->Arg(8)->Arg(250)->Arg(32000);
BENCHMARK(parse)->Arg(8)->Arg(250)->Arg(32000);
} // namespace
