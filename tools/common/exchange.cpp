// One request and its answer.
#include "tools/common/exchange.h"

#include <span>
#include <vector>

#include <zucom/zucom.h>

#include "tools/common/frameBytes.h"
#include "tools/common/readerPort.h"

namespace
{

constexpr std::size_t bufferSize = 65535; // no frame is longer
constexpr int notAFrame = -1;             // what the library answers when bytes came that begin no known kind of frame

} // namespace

Exchange exchangeFrame(ReaderPort& port, const ZuProt& request)
{
    using Clock = std::chrono::steady_clock;
    Exchange exchange;
    exchange.request = request;
    std::vector<std::uint8_t> buffer(bufferSize);
    port.command("FLUSHINQ");
    const Clock::time_point start = Clock::now();
    exchange.code = port.transmit(request);
    if (exchange.code >= 0)
        exchange.code = port.receive(buffer);
    exchange.time = Clock::now() - start;
    if (exchange.code > 0)
        exchange.answer = frameOfBytes(std::span(buffer).first(static_cast<std::size_t>(exchange.code)));
    return exchange;
}

bool Exchange::portIsGone() const
{
    return code == ZUCOM_ERR_NOT_CONNECTED || code == ZUCOM_ERR_TRANSMIT || code == ZUCOM_ERR_READ;
}

std::string Exchange::failure() const
{
    if (code == notAFrame)
        return "bytes that begin no known kind of frame (-1)";
    if (code < 0)
        return codeText(code);
    return isGood() ? "" : "the check sum of the answer is wrong";
}
