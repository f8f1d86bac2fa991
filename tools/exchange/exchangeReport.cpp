// How exchanges are shown.
#include "tools/exchange/exchangeReport.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tools/common/jsonText.h"
#include "tools/common/terminal.h"

namespace
{

// Texts of the library begin with a blank; they hide secret bytes.
std::string frameText(const ZuProt& frame) { return frame.protocolToString().substr(1); }

std::string payloadText(const ZuProt& frame)
{
    const std::string text = frame.payloadToString();
    return text.empty() ? text : text.substr(1);
}

double milliseconds(const Exchange& exchange) { return exchange.time.count() * 1000.0; }

std::string fieldsText(const ZuProt& frame)
{
    return fmt::format("{} frame, address {}, command {:02X}, status {:02X}, payload {}, check sum {}",
                       ZuProt::generationToString(frame.generation()), frame.busAddrOfProtocol(),
                       frame.commandOfProtocol(), frame.statusOfProtocol(), payloadText(frame),
                       frame.isValidProtocol() ? "right" : "wrong");
}

nlohmann::ordered_json frameJson(const ZuProt& frame)
{
    return {{"frame", frameText(frame)},
            {"kind", ZuProt::generationToString(frame.generation())},
            {"address", frame.busAddrOfProtocol()},
            {"command", fmt::format("{:02X}", frame.commandOfProtocol())},
            {"status", fmt::format("{:02X}", frame.statusOfProtocol())},
            {"payload", payloadText(frame)},
            {"valid", frame.isValidProtocol()}};
}

} // namespace

std::string exchangeText(const Exchange& exchange)
{
    std::string text = fmt::format("{}  {}\n", paint(Colour::bold, "request"), frameText(exchange.request));
    if (exchange.answer)
        text += fmt::format("{}   {}  {}\n         {}\n", paint(Colour::bold, "answer"), frameText(*exchange.answer),
                            paint(Colour::dim, fmt::format("after {:.1f} ms", milliseconds(exchange))),
                            fieldsText(*exchange.answer));
    if (!exchange.isGood())
        text += fmt::format("{}  {}  {}\n", paint(Colour::red, "failure"), exchange.failure(),
                            paint(Colour::dim, fmt::format("after {:.1f} ms", milliseconds(exchange))));
    return text;
}

std::string exchangeJson(const Exchange& exchange)
{
    nlohmann::ordered_json value{{"request", frameText(exchange.request)}, {"milliseconds", milliseconds(exchange)}};
    value["answer"] = exchange.answer ? frameJson(*exchange.answer) : nullptr;
    if (!exchange.isGood())
    {
        value["code"] = exchange.code < 0 ? exchange.code : 0;
        value["failure"] = exchange.failure();
    }
    return jsonLine(value);
}

void ExchangeSummary::add(const Exchange& exchange)
{
    ++sent_;
    if (exchange.isGood())
        times_.push_back(milliseconds(exchange));
}

std::string ExchangeSummary::text() const
{
    std::string text = fmt::format("{} sent, {} answered", sent_, times_.size());
    if (!times_.empty())
    {
        std::vector<double> sorted = times_;
        std::ranges::sort(sorted);
        text += fmt::format(", least {:.1f} ms, median {:.1f} ms, most {:.1f} ms", sorted.front(),
                            sorted[sorted.size() / 2], sorted.back());
    }
    return text + '\n';
}
