/**
 * @file
 * One port and its reader, used over and over while the reader spoils its answers.
 */
#ifndef TESTS_SOAK_SOAKED_PORT_H
#define TESTS_SOAK_SOAKED_PORT_H

#include <atomic>
#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tools/sim/readerSimulator.h"

/**
 * The reader runs on a thread of its own. Its faults come from a seed, so the port's side draws the same ones and knows
 * before each exchange, byte for byte, what has to be the result.
 */
class SoakedPort
{
public:
    struct Figures
    {
        long openings = 0;
        long exchanges = 0;
        long faults = 0;
        std::vector<std::string> failures;
    };

    SoakedPort(const std::string& devicePath, std::uint64_t seed);
    SoakedPort(const SoakedPort&) = delete;
    SoakedPort& operator=(const SoakedPort&) = delete;
    ~SoakedPort();

    /** Opens the port, exchanges frames and closes it, again and again until told to stop. */
    void use(const std::atomic<bool>& stop);

    const Figures& figures() const { return figures_; }

private:
    bool open();
    bool exchange();
    ZuProt randomRequest();
    void expect(const std::string& what, long wanted, long result);
    void set(const char* key, const std::string& value);
    void receiveFrame(const std::vector<std::uint8_t>& frame);
    void receiveSpoilt(const std::vector<std::uint8_t>& bytes);
    void receiveFromNobody();

    const std::string path_;
    std::mt19937_64 random_;
    FaultPlan foreseen_; // draws what the reader's own plan draws
    int port_ = 0;
    int driver_ = -1; // the same device beside the port, to see what waits there
    std::vector<std::uint8_t> buffer_;
    Figures figures_;
    const int stopReader_;
    ReaderSimulator reader_;
    std::thread readerThread_;
};

#endif
