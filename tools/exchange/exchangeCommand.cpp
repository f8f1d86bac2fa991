// The sub-command zucom exchange: sends frames to a reader and shows its answers.
#include "tools/exchange/exchangeCommand.h"

#include <cstdio>
#include <iostream>
#include <memory>

#include "tools/common/exchange.h"
#include "tools/common/failure.h"
#include "tools/common/frameOptions.h"
#include "tools/common/lineOptions.h"
#include "tools/common/options.h"
#include "tools/common/readerPort.h"
#include "tools/common/stopSignal.h"
#include "tools/exchange/exchangeReport.h"
#include "tools/exchange/payloadSource.h"

namespace
{

struct ExchangeOptions
{
    std::string device;
    std::vector<std::string> payloads;
    FrameOptions frame;
    LineOptions line;
    int repeat = 1;
    int interval = 0; // ms
    bool json = false;
};

void show(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout); // a script at the other end of a pipe waits for it
}

int exchange(const ExchangeOptions& options)
{
    const StopSignal stop; // first: it outlives the port, which restores the line
    PayloadSource source(options.payloads, options.repeat, std::cin);
    ReaderPort port(options.device);
    applyLine(port, options.line);
    port.set("BUSADDRESS", std::to_string(options.frame.address));

    ExchangeSummary summary;
    while (const auto payload = source.next())
    {
        if (summary.sent() > 0 && !stop.pause(options.interval))
            break;
        const Exchange done = exchangeFrame(port, buildRequest(options.frame, *payload));
        if (stop.requested() && !done.isGood())
            break;
        summary.add(done);
        show(options.json ? exchangeJson(done) : exchangeText(done));
        if (done.portIsGone() || stop.requested())
            break;
    }
    if (summary.sent() != 1 && !options.json)
        show(summary.text());
    return summary.allGood() ? exitDone : exitRefused;
}

} // namespace

Action exchangeCommand(Options& options)
{
    const auto given = std::make_shared<ExchangeOptions>();
    options.text("device", given->device, "Path of the serial device")
        .required()
        .texts("payload", given->payloads, "Payloads in hexadecimal, one frame for each; none: one on each input line");
    addFrameOptions(options, given->frame);
    addLineOptions(options, given->line);
    options.number("-r,--repeat", given->repeat, 0, 1000000000, "Send the payloads this many times; 0 until Ctrl-C")
        .number("-i,--interval", given->interval, 0, 3600000, "Wait this many ms between exchanges")
        .flag("--json", given->json, "Print one JSON object a line for each exchange")
        .footer("Example: zucom exchange /dev/ttyUSB0 --baud 115200 --address 3 \"52 00\" \"A0 01\"");
    return [given] { return exchange(*given); };
}
