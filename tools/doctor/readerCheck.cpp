// Whether a reader answers, asked through the library.
#include "tools/doctor/readerCheck.h"

#include <fmt/format.h>

#include "tools/common/codeAdvice.h"
#include "tools/common/exchange.h"
#include "tools/common/failure.h"
#include "tools/common/hexText.h"
#include "tools/common/readerPort.h"

void checkReader(const std::string& path, const Ping& ping, Findings& findings)
{
    const auto payload = bytesFromHex(ping.payload);
    if (!payload || payload->empty())
        throw UsageError("no payload in hexadecimal: " + ping.payload);
    const ZuProt request = buildRequest(ping.frame, *payload);
    const std::string how = fmt::format("at {} {}, address {}", ping.line.baud, ping.line.frame, ping.frame.address);
    try
    {
        ReaderPort port(path);
        applyLine(port, ping.line);
        port.set("BUSADDRESS", std::to_string(ping.frame.address));
        const Exchange done = exchangeFrame(port, request);
        if (done.isGood())
        {
            findings.push_back(
                {"reader", Verdict::ok, fmt::format("answers {} within {:.1f} ms", how, done.time.count() * 1000), ""});
            return;
        }
        const CodeAdvice* advice = adviceForCode(done.code);
        findings.push_back(
            {"reader", Verdict::fail, fmt::format("does not answer {}: {}", how, done.failure()),
             done.code < 0 && advice ? advice->remedy : "zucom explain BYTES    # tells what is broken"});
    }
    catch (const Refused& refused)
    {
        findings.push_back({"reader", Verdict::fail, refused.what(), "see the steps before"});
    }
}
