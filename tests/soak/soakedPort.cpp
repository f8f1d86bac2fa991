// One port and its reader, used over and over while the reader spoils its answers.
#include "tests/soak/soakedPort.h"

#include <algorithm>
#include <chrono>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <zucom/zucom.h>

#include "tools/common/frameBytes.h"

namespace
{

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

const std::vector<std::string> faults = {"foreign-address@2", "wrong-crc@2", "flipped-bit@3", "lost-byte@3",
                                         "two-frames@3",      "garbage@2",   "echo@2",        "pieces=1@5",
                                         "delay=2@3",         "never@2",     "hang-up=3@1"};
constexpr std::uint8_t address = 1;
constexpr std::size_t bufferSize = 4096;
constexpr int exchangesPerOpening = 50;
constexpr const char* patient = "60000"; // ms for what is sure to come
constexpr auto patience = 60s;

SimulatedReader readerOn(const std::string& path, std::uint64_t seed)
{
    SimulatedReader reader;
    reader.addresses = {address};
    reader.link = path;
    reader.faults = FaultPlan(faults, seed);
    return reader;
}

Bytes joined(const std::vector<Bytes>& pieces)
{
    Bytes all;
    for (const Bytes& piece : pieces)
        all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

// What a receive that finds these bytes waiting has to answer: length of the frame at their beginning, or the code.
long resultFor(const Bytes& bytes)
{
    const auto at = [&](std::size_t index) { return index < bytes.size() ? bytes[index] : std::uint8_t{0}; };
    const std::uint8_t kind = at(0);
    if (bytes.empty())
        return ZUCOM_ERR_TIMEOUT;
    if (kind == 0 || kind == 1 || kind == 4)
        return -1;
    const std::size_t length = kind > 4 ? kind : static_cast<std::size_t>(at(1) << 8 | at(2));
    const std::uint8_t from = at(kind == 2 ? 3 : kind == 3 ? 5 : 1);
    if (length == 0 || length > bytes.size())
        return ZUCOM_ERR_PROTOCOL_LENGTH;
    if (from == address || from == 255)
        return static_cast<long>(length);
    return length == bytes.size() ? ZUCOM_ERR_TIMEOUT : ZUCOM_ERR_PROTOCOL_LENGTH; // dropped; what follows is no answer
}

} // namespace

SoakedPort::SoakedPort(const std::string& devicePath, std::uint64_t seed)
    : path_(devicePath),
      random_(seed),
      foreseen_(faults, seed),
      buffer_(bufferSize),
      stopReader_(eventfd(0, EFD_CLOEXEC)),
      reader_(readerOn(devicePath, seed), {}),
      readerThread_([this] { reader_.serve(stopReader_); })
{
}

SoakedPort::~SoakedPort()
{
    eventfd_write(stopReader_, 1);
    readerThread_.join();
    close(stopReader_);
}

void SoakedPort::use(const std::atomic<bool>& stop)
{
    while (!stop && open())
    {
        for (int left = exchangesPerOpening; left > 0 && !stop; --left)
            if (!exchange())
                break;
        expect("ZUCOM_ClosePort", 0, ZUCOM_ClosePort(port_));
        close(driver_);
    }
}

// A reader that hung up comes back, and its exclusive mode ends, as soon as its thread gets round to it.
bool SoakedPort::open()
{
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (std::chrono::steady_clock::now() < giveUp)
    {
        driver_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (driver_ >= 0 && (port_ = ZUCOM_OpenPort(path_.c_str())) > 0)
        {
            ++figures_.openings;
            set("BAUD", "115200");
            set("BUSADDRESS", std::to_string(address));
            set("TXDELAYTIME", "0");
            return true;
        }
        close(driver_);
        std::this_thread::sleep_for(1ms);
    }
    figures_.failures.push_back(path_ + " does not open any more");
    return false;
}

// False when the device went away.
bool SoakedPort::exchange()
{
    const ZuProt request = randomRequest();
    const Bytes payload = AnswerScript().answerTo(payloadOfFrame(request)).value();
    ZuProt answer;
    answer.setPayload(payload.data(), payload.size(), request.generation(), directionResponse, address);
    const Delivery delivery = foreseen_.deliveryOf(answer, request);
    ++figures_.exchanges;
    figures_.faults += std::count(delivery.faults.begin(), delivery.faults.end(), ' ');

    const Bytes sent = bytesOfFrame(request);
    expect("ZUCOM_Transmit", static_cast<long>(sent.size()), ZUCOM_Transmit(port_, sent.data(), sent.size()));
    const Bytes bytes = joined(delivery.pieces);
    if (delivery.away)
        receiveFromNobody();
    else if (bytes == bytesOfFrame(answer))
        receiveFrame(bytes);
    else
        receiveSpoilt(bytes);
    return !delivery.away;
}

ZuProt SoakedPort::randomRequest()
{
    constexpr std::uint8_t kinds[] = {0, 2, 3};
    const std::uint8_t kind = kinds[random_() % std::size(kinds)];
    Bytes payload(1 + random_() % (kind == 0 ? 250 : 900));
    std::generate(payload.begin(), payload.end(), [this] { return static_cast<std::uint8_t>(random_()); });
    ZuProt request;
    request.setPayload(payload.data(), payload.size(), kind, directionRequest, random_() % 4 != 0 ? address : 255);
    return request;
}

void SoakedPort::expect(const std::string& what, long wanted, long result)
{
    if (result != wanted)
        figures_.failures.push_back(path_ + ", exchange " + std::to_string(figures_.exchanges) + ": " + what +
                                    " gave " + std::to_string(result) + " instead of " + std::to_string(wanted));
}

void SoakedPort::set(const char* key, const std::string& value)
{
    expect(std::string("ZUCOM_SetPortPara ") + key, 0, ZUCOM_SetPortPara(port_, key, value.c_str()));
}

void SoakedPort::receiveFrame(const Bytes& frame)
{
    set("TIMEOUT", patient);
    const int length = ZUCOM_Receive(port_, buffer_.data(), buffer_.size());
    expect("ZUCOM_Receive", static_cast<long>(frame.size()), length);
    expect("the frame's comparison", 0, length > 0 && !std::equal(frame.begin(), frame.end(), buffer_.begin()));
}

// Waits until everything has arrived, so that the result depends on the bytes alone.
void SoakedPort::receiveSpoilt(const Bytes& bytes)
{
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    int waiting = 0;
    while (waiting < static_cast<int>(bytes.size()) && std::chrono::steady_clock::now() < giveUp)
    {
        ioctl(driver_, FIONREAD, &waiting);
        std::this_thread::sleep_for(1ms);
    }
    set("TIMEOUT", "1");
    const long wanted = resultFor(bytes);
    const int length = ZUCOM_Receive(port_, buffer_.data(), buffer_.size());
    expect("ZUCOM_Receive", wanted, length);
    if (length > 0 && length == wanted)
        expect("the frame's comparison", 0, !std::equal(buffer_.begin(), buffer_.begin() + length, bytes.begin()));
    char value[ZUCOM_COMMAND_VALUE_SIZE] = "";
    expect("ZUCOM_DoPortCmd FLUSHINQ", 0, ZUCOM_DoPortCmd(port_, "FLUSHINQ", value));
}

// A pseudo-terminal whose other end is gone reports the end of the file or an error, as it happens.
void SoakedPort::receiveFromNobody()
{
    set("TIMEOUT", patient);
    const int result = ZUCOM_Receive(port_, buffer_.data(), buffer_.size());
    expect("ZUCOM_Receive", result == ZUCOM_ERR_READ ? result : ZUCOM_ERR_NOT_CONNECTED, result);
    expect("ZUCOM_Transmit", ZUCOM_ERR_NOT_CONNECTED, ZUCOM_Transmit(port_, buffer_.data(), 1));
}
