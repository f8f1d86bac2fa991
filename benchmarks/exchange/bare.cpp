// Hand-written system calls for a caller who knows how long the answer is: the floor for everybody else.
#include "benchmarks/exchange/contender.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/select.h>
#include <unistd.h>

namespace
{
constexpr int timeoutSeconds = 1;

class BareLine : public Exchange
{
public:
    BareLine(const std::string& path, const Talk& said)
        : device(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)), talk(said), buffer(callerBuffer)
    {
        expect(device >= 0);
    }
    BareLine(const BareLine&) = delete;
    BareLine& operator=(const BareLine&) = delete;
    ~BareLine() override { close(device); }

protected:
    void send() const
    {
        expect(write(device, talk.request.data(), talk.request.size()) == static_cast<ssize_t>(talk.request.size()));
    }

    std::size_t readMore(std::size_t have)
    {
        const ssize_t count = read(device, buffer.data() + have, buffer.size() - have);
        expect(count > 0);
        return have + static_cast<std::size_t>(count);
    }

    const int device;
    const Talk talk;
    std::vector<uint8_t> buffer;
};

class PollLine final : public BareLine
{
public:
    using BareLine::BareLine;

    void run() override
    {
        send();
        for (std::size_t have = 0; have < talk.answer.size(); have = readMore(have))
        {
            pollfd wanted{device, POLLIN, 0};
            expect(poll(&wanted, 1, timeoutSeconds * 1000) == 1);
        }
    }
};

class SelectLine final : public BareLine
{
public:
    using BareLine::BareLine;

    void run() override
    {
        send();
        for (std::size_t have = 0; have < talk.answer.size(); have = readMore(have))
        {
            fd_set readable;
            FD_ZERO(&readable);
            FD_SET(device, &readable);
            timeval timeout{timeoutSeconds, 0};
            expect(select(device + 1, &readable, nullptr, nullptr, &timeout) == 1);
        }
    }
};

template <class Line>
std::unique_ptr<Exchange> openLine(const std::string& path, const Talk& talk)
{
    return std::make_unique<Line>(path, talk);
}
} // namespace

const Contender barePoll{"poll", readerTalk, openLine<PollLine>};
const Contender bareSelect{"select", readerTalk, openLine<SelectLine>};
