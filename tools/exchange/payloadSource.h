// The payloads to send, from the command line or from a stream.
#ifndef ZUCOM_TOOLS_PAYLOAD_SOURCE_H
#define ZUCOM_TOOLS_PAYLOAD_SOURCE_H

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

// Payload by payload, so that a batch can be typed or piped while it is being sent.
class PayloadSource
{
public:
    // The texts, this many times over (0 for ever); without texts the lines of the stream, once.
    PayloadSource(const std::vector<std::string>& texts, int rounds, std::istream& lines);

    // Nothing at the end. Throws UsageError for a line that is no hexadecimal text; "#" begins a comment.
    std::optional<std::vector<std::uint8_t>> next();

private:
    std::optional<std::vector<std::uint8_t>> nextLine();

    std::vector<std::vector<std::uint8_t>> payloads_;
    std::size_t index_ = 0;
    int rounds_;
    std::istream& lines_;
    int lineNumber_ = 0;
};

#endif
