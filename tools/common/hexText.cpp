// Bytes as hexadecimal text and back.
#include "tools/common/hexText.h"

#include <zucom/zuProtocol.h>

std::string hexText(std::span<const std::uint8_t> bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes)
    {
        if (!text.empty())
            text += ' ';
        ZuProt::appendByteToHexString(byte, text);
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> bytesFromHex(const std::string& text)
{
    std::vector<std::uint8_t> bytes(text.size() / 2 + 1);
    std::size_t length = bytes.size();
    if (!ZuProt::stringToPayload(text, bytes.data(), &length))
        return std::nullopt;
    bytes.resize(length);
    return bytes;
}
