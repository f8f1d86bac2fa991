// A reader that is not there: it answers on a pseudo-terminal.
#ifndef ZUCOM_TOOLS_READER_SIMULATOR_H
#define ZUCOM_TOOLS_READER_SIMULATOR_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <zucom/zuProtQueue.h>
#include <zucom/zuProtocol.h>

#include "tools/sim/answerScript.h"
#include "tools/sim/faultPlan.h"
#include "tools/sim/ptyDevice.h"

struct SimulatedReader
{
    std::vector<int> addresses{1}; // the first one answers what is sent to 255, every reader
    int bitsPerSecond = 0;         // answers at this speed only; 0 for any
    int stopBits = 0;              // and with this number of stop bits only; 0 for any
    std::string link;              // second name of its device
    AnswerScript answers;
    FaultPlan faults{{}, 0};
};

// What the simulator reports while it runs.
struct SimulatorEvents
{
    std::function<void(const std::string& path)> device = [](const std::string&) {};  // came (back) under this name
    std::function<void(const std::string& text)> traffic = [](const std::string&) {}; // one thing that happened
};

// Understands the three kinds of frames, checks the CRC of requests and answers in the kind it was asked in.
class ReaderSimulator
{
public:
    ReaderSimulator(SimulatedReader reader, SimulatorEvents events);

    // Answers until the descriptor becomes readable.
    void serve(int stopDescriptor);

private:
    void openDevice();
    void takeBytes();
    void takeRequest(const ZuProt& request);
    std::optional<int> addressFor(const ZuProt& request) const;
    void send(const Delivery& delivery);
    bool write(std::span<const std::uint8_t> bytes);
    void hangUp(std::chrono::milliseconds away);
    bool pause(std::chrono::milliseconds time) const;

    SimulatedReader reader_;
    SimulatorEvents events_;
    std::unique_ptr<PtyDevice> device_;
    ZuProtQueue queue_;
    int stopDescriptor_ = -1;
};

#endif
