// A reader that is not there: it answers on a pseudo-terminal.
#include "tools/sim/readerSimulator.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <unistd.h>

#include "tools/common/frameBytes.h"

namespace
{

constexpr std::size_t longestFrame = 32768;
constexpr int quietTime = 200; // ms without a byte, after which the beginning of a request is forgotten
constexpr std::uint8_t everyReader = 255;

} // namespace

ReaderSimulator::ReaderSimulator(SimulatedReader reader, SimulatorEvents events)
    : reader_(std::move(reader)), events_(std::move(events))
{
    openDevice();
}

void ReaderSimulator::openDevice()
{
    device_ = std::make_unique<PtyDevice>(reader_.link);
    queue_.clear();
    events_.device(reader_.link.empty() ? device_->path() : reader_.link);
}

void ReaderSimulator::serve(int stopDescriptor)
{
    stopDescriptor_ = stopDescriptor;
    int timeout = -1; // runs only while the queue may hold the beginning of a request
    for (;;)
    {
        pollfd waiting[] = {
            {stopDescriptor, POLLIN, 0}, {device_->descriptor(), POLLIN, 0}, {device_->closingDescriptor(), POLLIN, 0}};
        const int ready = poll(waiting, std::size(waiting), timeout);
        if (ready == 0)
        {
            queue_.clear();
            timeout = -1;
        }
        if (ready <= 0)
            continue; // a signal shows at the stop descriptor
        if (waiting[0].revents != 0)
            return;
        if (waiting[1].revents != 0 || waiting[2].revents != 0)
            device_->endExclusiveMode();
        if (waiting[1].revents != 0)
        {
            takeBytes();
            timeout = quietTime;
        }
    }
}

void ReaderSimulator::takeBytes()
{
    std::uint8_t* room = queue_.next(longestFrame);
    const ssize_t count = read(device_->descriptor(), room, longestFrame);
    queue_.addSize(count > 0 ? static_cast<std::size_t>(count) : 0);
    queue_.next(0); // nothing but what was received is left to be looked at
    if (!device_->lineIs(reader_.bitsPerSecond, reader_.stopBits))
    {
        queue_.clear();
        events_.traffic("noise: bytes at other line settings");
        return;
    }
    std::vector<std::uint8_t> frame(longestFrame);
    std::int64_t length = 0;
    while ((length = queue_.popProtocol(frame.data(), frame.size())) > 0)
        takeRequest(frameOfBytes(std::span(frame).first(static_cast<std::size_t>(length))));
    if (length < 0)
    {
        queue_.clear();
        events_.traffic("noise: no known kind of frame");
    }
}

void ReaderSimulator::takeRequest(const ZuProt& request)
{
    events_.traffic("request" + request.protocolToString());
    if (!request.isValidProtocol() || payloadOfFrame(request).empty())
        return events_.traffic("silence: CRC or length is wrong");
    const std::optional<int> address = addressFor(request);
    if (!address)
        return events_.traffic("silence: not for this reader");
    const auto payload = reader_.answers.answerTo(payloadOfFrame(request));
    if (!payload)
        return events_.traffic("silence: as scripted");
    ZuProt answer;
    if (!answer.setPayload(payload->data(), payload->size(), request.generation(), directionResponse,
                           static_cast<std::uint8_t>(*address)))
        return events_.traffic("silence: the answer does not fit this kind of frame");
    events_.traffic("answer" + answer.protocolToString());
    const Delivery delivery = reader_.faults.deliveryOf(answer, request);
    if (!delivery.faults.empty())
        events_.traffic("spoilt by" + delivery.faults);
    send(delivery);
}

std::optional<int> ReaderSimulator::addressFor(const ZuProt& request) const
{
    const bool isAnswer = request.generation() == 3 && (request.directionOfProtocol() & directionRequest) == 0;
    if (isAnswer)
        return std::nullopt;
    if (request.busAddrOfProtocol() == everyReader)
        return reader_.addresses.front();
    const auto own = std::ranges::find(reader_.addresses, request.busAddrOfProtocol());
    return own == reader_.addresses.end() ? std::nullopt : std::optional(*own);
}

void ReaderSimulator::send(const Delivery& delivery)
{
    if (delivery.away)
        return hangUp(*delivery.away);
    std::chrono::milliseconds wait = delivery.delay;
    for (const std::vector<std::uint8_t>& piece : delivery.pieces)
    {
        if (!pause(wait) || !write(piece))
            return;
        wait = delivery.pause;
    }
}

// False when the simulator is to stop or the device failed before everything was written.
bool ReaderSimulator::write(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty())
    {
        pollfd waiting[] = {{stopDescriptor_, POLLIN, 0}, {device_->descriptor(), POLLOUT, 0}};
        if (poll(waiting, std::size(waiting), -1) > 0 && waiting[0].revents != 0)
            return false;
        const ssize_t count = ::write(device_->descriptor(), bytes.data(), bytes.size());
        if (count > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (errno != EAGAIN && errno != EINTR)
            return false;
    }
    return true;
}

void ReaderSimulator::hangUp(std::chrono::milliseconds away)
{
    device_.reset();
    pause(away);
    openDevice();
}

// False when the simulator is to stop.
bool ReaderSimulator::pause(std::chrono::milliseconds time) const
{
    pollfd stop{stopDescriptor_, POLLIN, 0};
    return poll(&stop, 1, static_cast<int>(time.count())) == 0;
}
