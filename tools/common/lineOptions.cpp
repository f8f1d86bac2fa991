// The options that say how the line to a reader is set.
#include "tools/common/lineOptions.h"

#include <zucom/zucom.h>

#include "tools/common/baudRates.h"
#include "tools/common/failure.h"
#include "tools/common/readerPort.h"

void addLineOptions(Options& options, LineOptions& line)
{
    options.choice("-b,--baud", line.baud, allowedRates(), "Speed of the line in bit/s")
        .text("-f,--frame", line.frame, "Data bits, parity and stop bits of the line")
        .number("-t,--timeout", line.timeout, 0, 99999, "Longest silence to wait through, in ms")
        .choice("-m,--mode", line.mode, {"RS232", "RS485"}, "Switch the driver to this mode");
}

int applyParameter(ReaderPort& port, const char* key, const std::string& value)
{
    return port.get(key) == value ? ZUCOM_OK : port.set(key, value);
}

void applyLine(ReaderPort& port, const LineOptions& line)
{
    const auto apply = [&](const char* key, const std::string& value, const char* remark)
    {
        const int code = applyParameter(port, key, value);
        const std::string text = std::string(key) + " " + value + ": " + codeText(code);
        if (code == ZUCOM_ERR_OUT_OF_RANGE)
            throw UsageError(text);
        if (code != ZUCOM_OK)
            throw Refused(text + remark);
    };
    constexpr const char* noParity = "; a pseudo-terminal knows no parity and refuses what changes nothing";
    if (!line.mode.empty())
        apply("OPMODE", line.mode, "; the driver has no RS485 mode");
    apply("BAUD", std::to_string(line.baud), noParity);
    apply("FRAME", line.frame, noParity);
    apply("TIMEOUT", std::to_string(line.timeout), "");
}
