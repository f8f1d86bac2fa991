// Asks for readers, one line setting and bus address after the other.
#include "tools/scan/scanner.h"

#include <algorithm>
#include <optional>

#include <zucom/zucom.h>

#include "tools/common/exchange.h"
#include "tools/common/failure.h"
#include "tools/common/lineOptions.h"
#include "tools/common/readerPort.h"
#include "tools/common/stopSignal.h"

namespace
{

constexpr int everyReader = 255;

class Scanner
{
public:
    Scanner(ReaderPort& port, const ScanRequest& request, const StopSignal& stop, const ScanEvents& events)
        : port_(port), request_(request), stop_(stop), events_(events)
    {
    }

    ScanResult run()
    {
        port_.set("BUSADDRESS", std::to_string(everyReader)); // so that a stranger's frame ends the wait, too
        for (const ScanStep& step : request_.steps)
        {
            runStep(step);
            if (isOver())
                break;
        }
        return result_;
    }

private:
    bool isOver() const { return result_.stopped || (!result_.found.empty() && !request_.all); }

    void runStep(const ScanStep& step)
    {
        ++result_.settings;
        if (!setLine(step.line))
        {
            ++result_.refused;
            done_ += step.addresses.size();
            return;
        }
        for (const int address : step.addresses)
        {
            events_.asking(done_++, step.line, address);
            lookFor(step.line, address);
            if (isOver())
                return;
        }
    }

    // False when the driver refuses.
    bool setLine(const LineSetting& line)
    {
        const int baud = applyParameter(port_, "BAUD", std::to_string(line.baud));
        const int frame = applyParameter(port_, "FRAME", line.frame);
        if (frame == ZUCOM_ERR_OUT_OF_RANGE)
            throw UsageError("no frame is called " + line.frame);
        return baud == ZUCOM_OK && frame == ZUCOM_OK;
    }

    // An answer counts when it comes twice: the first could be a late one to what was asked at the setting before.
    void lookFor(const LineSetting& line, int address)
    {
        const std::optional<Exchange> first = ask(line, address);
        const std::optional<Exchange> second = first ? ask(line, address) : std::nullopt;
        if (!second)
            return;
        const FoundReader reader{line, second->answer->busAddrOfProtocol(), second->time.count() * 1000.0};
        if (isKnown(reader))
            return;
        result_.found.push_back(reader);
        events_.found(reader);
    }

    std::optional<Exchange> ask(const LineSetting& line, int address)
    {
        ++result_.asked;
        const Exchange exchange = exchangeFrame(port_, buildRequest({request_.kind, address}, request_.payload));
        if (stop_.requested())
            result_.stopped = true;
        else if (exchange.portIsGone())
            throw Refused("the device failed: " + exchange.failure());
        if (exchange.isGood() && (address == everyReader || exchange.answer->busAddrOfProtocol() == address))
            return exchange;
        if (exchange.code != ZUCOM_ERR_TIMEOUT && !result_.stopped)
            noteNoise(line);
        return std::nullopt;
    }

    bool isKnown(const FoundReader& reader) const
    {
        return std::ranges::any_of(result_.found,
                                   [&](const FoundReader& known)
                                   {
                                       return known.line.baud == reader.line.baud &&
                                              known.line.frame == reader.line.frame && known.address == reader.address;
                                   });
    }

    void noteNoise(const LineSetting& line)
    {
        if (result_.noise.empty() || result_.noise.back().baud != line.baud || result_.noise.back().frame != line.frame)
            result_.noise.push_back(line);
    }

    ReaderPort& port_;
    const ScanRequest& request_;
    const StopSignal& stop_;
    const ScanEvents& events_;
    ScanResult result_;
    std::size_t done_ = 0;
};

} // namespace

ScanResult scan(ReaderPort& port, const ScanRequest& request, const StopSignal& stop, const ScanEvents& events)
{
    return Scanner(port, request, stop, events).run();
}

std::size_t numberOfQuestions(const std::vector<ScanStep>& steps)
{
    std::size_t sum = 0;
    for (const ScanStep& step : steps)
        sum += step.addresses.size();
    return sum;
}
