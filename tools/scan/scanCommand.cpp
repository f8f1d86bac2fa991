// The sub-command zucom scan: finds out how readers are set.
#include "tools/scan/scanCommand.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "tools/common/addressList.h"
#include "tools/common/baudRates.h"
#include "tools/common/failure.h"
#include "tools/common/hexText.h"
#include "tools/common/lineOptions.h"
#include "tools/common/options.h"
#include "tools/common/readerPort.h"
#include "tools/common/stopSignal.h"
#include "tools/scan/progressBar.h"
#include "tools/scan/scanReport.h"
#include "tools/scan/scanner.h"

namespace
{

struct ScanOptions
{
    std::string device;
    std::vector<std::string> speeds;
    std::vector<std::string> frames{"8E1", "8N1", "8O1", "8E2", "8N2", "8O2"}; // the likeliest first
    std::string addresses = "255";
    std::string kind = "standard";
    std::string payload = "52 00";
    std::string mode;
    int timeout = 250; // ms
    bool all = false;
    bool json = false;
};

std::vector<int> speedsOf(const std::vector<std::string>& texts)
{
    const std::vector<int> known = allowedRates();
    std::vector<int> speeds;
    for (const std::string& text : texts)
    {
        const auto rate = std::ranges::find_if(known, [&](int speed) { return std::to_string(speed) == text; });
        if (rate == known.end())
            throw UsageError(text + " is no speed; known are " + fmt::format("{}", fmt::join(known, ", ")));
        speeds.push_back(*rate);
    }
    return speeds.empty() ? known : speeds;
}

ScanRequest requestOf(const ScanOptions& options)
{
    const auto payload = bytesFromHex(options.payload);
    if (!payload || payload->empty())
        throw UsageError("no payload in hexadecimal: " + options.payload);
    ScanRequest request{planScan(speedsOf(options.speeds), options.frames, addressesOf(options.addresses, 255)),
                        options.kind, *payload, options.all};
    buildRequest({options.kind, 255}, *payload); // complains when it does not fit
    return request;
}

int scanDevice(const ScanOptions& options)
{
    const ScanRequest request = requestOf(options);
    const StopSignal stop; // first: it outlives the port, which restores the line
    ReaderPort port(options.device);
    applyLine(port, {.timeout = options.timeout, .mode = options.mode});

    ProgressBar bar(numberOfQuestions(request.steps));
    ScanEvents events;
    events.asking = [&](std::size_t done, const LineSetting& line, int address)
    { bar.show(done, fmt::format("{} {} address {}", line.baud, line.frame, address)); };
    events.found = [&](const FoundReader& reader)
    {
        bar.clear();
        if (!options.json)
            std::fputs(readerText(reader, options.device, request).c_str(), stdout);
        std::fflush(stdout);
    };
    const ScanResult result = scan(port, request, stop, events);
    bar.clear();
    std::fputs((options.json ? scanJson(result) : summaryText(result)).c_str(), stdout);
    return result.found.empty() ? exitRefused : exitDone;
}

} // namespace

Action scanCommand(Options& options)
{
    const auto given = std::make_shared<ScanOptions>();
    options.text("device", given->device, "Path of the serial device")
        .required()
        .texts("-b,--baud", given->speeds, "Speeds to try, the likeliest first; else every one that the library knows")
        .texts("-f,--frame", given->frames, "Frames to try, the likeliest first; else 8E1,8N1,8O1,8E2,8N2,8O2")
        .text("-a,--address", given->addresses, "Bus addresses to ask, for example 255,0-16; every reader answers 255")
        .choice("-k,--kind", given->kind, {"standard", "advanced", "enhanced"}, "Kind of frame to ask with")
        .text("-p,--payload", given->payload, "Payload to ask with, in hexadecimal")
        .number("-t,--timeout", given->timeout, 0, 99999, "Longest time to wait for an answer, in ms")
        .choice("-m,--mode", given->mode, {"RS232", "RS485"}, "Switch the driver to this mode")
        .flag("--all", given->all, "Find every reader; else stop at the first one")
        .flag("--json", given->json, "Print the result as JSON")
        .footer("The line is left as it was, also after Ctrl-C. Settings that the driver refuses are skipped.\n"
                "Example: zucom scan /dev/ttyUSB0 --baud 9600,115200 --address 255,0-16 --all");
    return [given] { return scanDevice(*given); };
}
