// What does cutting frames out of a stream cost beside a linear buffer, and does it matter how many frames wait?
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include <zucom/zuProtQueue.h>

#include "benchmarks/support/ptyReader.h"

namespace
{
constexpr std::size_t streamSize = 64 << 20;
constexpr std::size_t chunkSize = 4096;
constexpr std::size_t frameRoom = 40000;

/** What a program would write for itself: one buffer, its rest moved to the front when a chunk does not fit. */
class InlinedBuffer
{
public:
    uint8_t* next(std::size_t size)
    {
        if (end + size > sizeof bytes)
        {
            std::memmove(bytes, bytes + begin, end - begin);
            end -= begin;
            begin = 0;
        }
        return bytes + end;
    }

    void addSize(std::size_t size) { end += size; }

    int64_t popProtocol(uint8_t* frame, std::size_t size)
    {
        if (end - begin < 6)
            return 0;
        const uint8_t* header = bytes + begin;
        const std::size_t length = header[0] > 4 ? header[0] : std::size_t{header[1]} << 8 | header[2];
        if (length > end - begin)
            return 0;
        if (length > size)
            return -1;
        std::memcpy(frame, header, length);
        begin += length;
        return static_cast<int64_t>(length);
    }

private:
    uint8_t bytes[1 << 16];
    std::size_t begin = 0;
    std::size_t end = 0;
};

/** The same behind a call, as any queue of a library is. */
class LinearBuffer : public InlinedBuffer
{
public:
    [[gnu::noinline]] int64_t popProtocol(uint8_t* frame, std::size_t size)
    {
        return InlinedBuffer::popProtocol(frame, size);
    }
};

std::vector<uint8_t> streamOf(std::size_t frameLength)
{
    const std::vector<uint8_t> frame = readerFrame(frameLength);
    std::vector<uint8_t> stream;
    stream.reserve(streamSize);
    while (stream.size() + frame.size() <= streamSize)
        stream.insert(stream.end(), frame.begin(), frame.end());
    return stream;
}

template <class Queue>
std::size_t cut(Queue& queue, const std::vector<uint8_t>& stream)
{
    static uint8_t frame[frameRoom];
    std::size_t frames = 0;
    for (std::size_t at = 0; at < stream.size(); at += chunkSize)
    {
        const std::size_t size = std::min(chunkSize, stream.size() - at);
        std::memcpy(queue.next(size), stream.data() + at, size);
        queue.addSize(size);
        while (queue.popProtocol(frame, sizeof frame) > 0)
            ++frames;
    }
    return frames;
}

template <class Queue>
void cutStream(benchmark::State& state)
{
    const auto frameLength = static_cast<std::size_t>(state.range(0));
    const std::vector<uint8_t> stream = streamOf(frameLength);
    static Queue queue;
    for ([[maybe_unused]] auto _ : state)
        if (cut(queue, stream) != stream.size() / frameLength)
            state.SkipWithError("frames were lost");
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(stream.size()));
}

void frameLengths(benchmark::internal::Benchmark* bench)
{
    bench->Arg(6)->Arg(250)->Arg(2000)->Arg(32000)->Unit(benchmark::kMillisecond);
}
BENCHMARK(cutStream<InlinedBuffer>)->Apply(frameLengths);
BENCHMARK(cutStream<LinearBuffer>)->Apply(frameLengths);
BENCHMARK(cutStream<ZuProtQueue>)->Apply(frameLengths);

/** One frame in and one out, behind so many that wait. */
void framesWait(benchmark::State& state)
{
    const std::vector<uint8_t> frame = readerFrame(6);
    ZuProtQueue queue;
    const auto push = [&]
    {
        std::memcpy(queue.next(frame.size()), frame.data(), frame.size());
        queue.addSize(frame.size());
    };
    for (int64_t i = 0; i < state.range(0); ++i)
        push();
    uint8_t out[frameRoom];
    for ([[maybe_unused]] auto _ : state)
    {
        push();
        if (queue.popProtocol(out, sizeof out) != static_cast<int64_t>(frame.size()))
            state.SkipWithError("a frame was lost");
    }
}
BENCHMARK(framesWait)->Arg(1)->Arg(100)->Arg(10000);
} // namespace
