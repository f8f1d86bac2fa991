// What does an operation with three log points cost? Run once with logging off and once with a configuration that
// switches it on: the library reads its configuration once a process.
#include <benchmark/benchmark.h>

#include <zucom/zucomPort.h>

namespace
{
void readTimeout(benchmark::State& state)
{
    ZucomPort port("nowhere");
    char value[16];
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(port.getPortPara("TIMEOUT", value));
}
BENCHMARK(readTimeout);
} // namespace
