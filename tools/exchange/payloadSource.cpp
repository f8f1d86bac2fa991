// The payloads to send, from the command line or from a stream.
#include "tools/exchange/payloadSource.h"

#include <algorithm>
#include <iterator>

#include "tools/common/failure.h"
#include "tools/common/hexText.h"

namespace
{

std::vector<std::uint8_t> payloadOf(const std::string& text, const std::string& where)
{
    const auto bytes = bytesFromHex(text);
    if (!bytes || bytes->empty())
        throw UsageError(where + " is no payload in hexadecimal: " + text);
    return *bytes;
}

} // namespace

PayloadSource::PayloadSource(const std::vector<std::string>& texts, int rounds, std::istream& lines)
    : rounds_(rounds), lines_(lines)
{
    std::ranges::transform(texts, std::back_inserter(payloads_),
                           [](const std::string& text) { return payloadOf(text, "the argument"); });
}

std::optional<std::vector<std::uint8_t>> PayloadSource::next()
{
    if (payloads_.empty())
        return nextLine();
    if (index_ == payloads_.size())
    {
        if (rounds_ == 1)
            return std::nullopt;
        rounds_ -= rounds_ == 0 ? 0 : 1;
        index_ = 0;
    }
    return payloads_[index_++];
}

std::optional<std::vector<std::uint8_t>> PayloadSource::nextLine()
{
    for (std::string line; std::getline(lines_, line);)
    {
        ++lineNumber_;
        line.erase(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            return payloadOf(line, "line " + std::to_string(lineNumber_));
    }
    return std::nullopt;
}
