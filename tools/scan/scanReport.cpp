// How the result of a scan is shown.
#include "tools/scan/scanReport.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tools/common/hexText.h"
#include "tools/common/jsonText.h"
#include "tools/common/terminal.h"

namespace
{

std::string lineText(const LineSetting& line) { return fmt::format("{} {}", line.baud, line.frame); }

} // namespace

std::string readerText(const FoundReader& reader, const std::string& device, const ScanRequest& request)
{
    return fmt::format(R"({} {} bit/s, frame {}, address {}, answered after {:.1f} ms
    ZUCOM_SetPortPara(handle, "BAUD", "{}");
    ZUCOM_SetPortPara(handle, "FRAME", "{}");
    ZUCOM_SetPortPara(handle, "BUSADDRESS", "{}");
    zucom exchange {} --baud {} --frame {} --address {} --kind {} "{}"
)",
                       paint(Colour::green, "found"), reader.line.baud, reader.line.frame, reader.address,
                       reader.milliseconds, reader.line.baud, reader.line.frame, reader.address, device,
                       reader.line.baud, reader.line.frame, reader.address, request.kind, hexText(request.payload));
}

std::string summaryText(const ScanResult& result)
{
    std::string text =
        fmt::format("{} found, {} requests sent, {} of {} line settings refused by the driver{}\n", result.found.size(),
                    result.asked, result.refused, result.settings, result.stopped ? ", stopped before the end" : "");
    if (result.found.empty() && !result.noise.empty())
        text += fmt::format("Bytes that are no answer came at {}{}: something is there.\n",
                            lineText(result.noise.front()), result.noise.size() > 1 ? " and other settings" : "");
    else if (result.found.empty() && !result.stopped)
        text += "Nothing answered. --address 0-254 asks each reader by its own address, --timeout waits longer.\n";
    return text;
}

std::string scanJson(const ScanResult& result)
{
    nlohmann::ordered_json value{{"found", nlohmann::ordered_json::array()},
                                 {"requests", result.asked},
                                 {"settings", result.settings},
                                 {"refused", result.refused},
                                 {"noise", nlohmann::ordered_json::array()},
                                 {"stopped", result.stopped}};
    for (const FoundReader& reader : result.found)
        value["found"].push_back({{"baud", reader.line.baud},
                                  {"frame", reader.line.frame},
                                  {"address", reader.address},
                                  {"milliseconds", reader.milliseconds}});
    for (const LineSetting& line : result.noise)
        value["noise"].push_back({{"baud", line.baud}, {"frame", line.frame}});
    return jsonText(value);
}
