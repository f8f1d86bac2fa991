// The sub-command zucom sim: options and output of the reader simulator.
#include "tools/sim/simCommand.h"

#include <cstdio>
#include <fstream>
#include <memory>
#include <random>

#include <fmt/format.h>

#include "tools/common/addressList.h"
#include "tools/common/baudRates.h"
#include "tools/common/failure.h"
#include "tools/common/options.h"
#include "tools/common/stopSignal.h"
#include "tools/sim/readerSimulator.h"

namespace
{

struct SimOptions
{
    std::string addresses = "1";
    int baud = 0;
    int stopBits = 0;
    bool random = false;
    bool tell = false;
    bool show = false;
    std::uint64_t seed = 0;
    std::string answers;
    std::vector<std::string> faults;
    std::string link;
};

AnswerScript readAnswers(const std::string& path)
{
    if (path.empty())
        return {};
    std::ifstream file(path);
    if (!file)
        throw UsageError("cannot read " + path);
    return {file, path};
}

void chooseAtRandom(SimOptions& options)
{
    std::mt19937_64 random(options.seed);
    options.addresses = std::to_string(random() % 255);
    options.baud = baudRates[random() % std::size(baudRates)].bitsPerSecond;
}

std::string settingsText(const SimOptions& options)
{
    return fmt::format("address {}, {}, {}, seed {}", options.addresses,
                       options.baud == 0 ? "any speed" : fmt::format("{} bit/s", options.baud),
                       options.stopBits == 0 ? "any stop bits" : fmt::format("{} stop bits", options.stopBits),
                       options.seed);
}

// Whoever started the simulator reads these lines as they come, so that none may wait in a buffer.
void say(const std::string& line)
{
    std::puts(line.c_str());
    std::fflush(stdout);
}

int simulate(SimOptions options)
{
    const StopSignal stop;
    if (options.seed == 0)
        options.seed = std::random_device()();
    if (options.random)
        chooseAtRandom(options);

    SimulatorEvents events;
    events.device = say;
    if (options.show)
        events.traffic = say;
    ReaderSimulator simulator({addressesOf(options.addresses, 254), options.baud, options.stopBits, options.link,
                               readAnswers(options.answers), FaultPlan(options.faults, options.seed)},
                              events);
    if (options.tell)
        say(settingsText(options));
    simulator.serve(stop.descriptor());
    return exitDone;
}

} // namespace

Action simCommand(Options& options)
{
    const auto given = std::make_shared<SimOptions>();
    static const std::string notes =
        "The first line of output is the path of the device, after a hang-up the new one.\n"
        "Faults, each NAME[=NUMBER][@PERCENT of the answers]:\n" +
        FaultPlan::help() +
        "Lines of an answer file: REQUEST => ANSWER, payloads in hexadecimal, for example\n"
        "  52 00 => 52 00 01 02     an answer to this very request\n"
        "  A0 *  => silence         none to any request that begins so\n"
        "Example: zucom sim --address 3 --baud 9600 --fault lost-byte@20 --seed 7";
    options.text("-a,--address", given->addresses, "Bus addresses of the readers on the line, for example 1,4-7")
        .choice("-b,--baud", given->baud, allowedRates(), "Answer at this speed in bit/s only; else at any")
        .choice("--stop-bits", given->stopBits, std::vector{1, 2},
                "Answer with this many stop bits only; else with any")
        .flag("--random", given->random, "Choose address and speed at random")
        .flag("--tell", given->tell, "Tell address, speed and seed")
        .flag("--show", given->show, "Show every request and answer")
        .number("--seed", given->seed, "Repeat what chance decided; 0 is a new seed")
        .text("--answers", given->answers, "File of scripted answers")
        .texts("-f,--fault", given->faults, "Spoil the answers")
        .text("-l,--link", given->link, "Second name of the device, a symbolic link")
        .footer(notes.c_str());
    return [given] { return simulate(*given); };
}
