// Frames from text and from bytes: check sum, masking, and the way back.

#include <zucom/zuProtocol.h>

#include "fuzz/fuzz.h"

namespace
{
using Bytes = std::vector<uint8_t>;
using fuzz::require;

Bytes heldBy(const ZuProt& frame)
{
    std::size_t length = 0;
    const uint8_t* bytes = frame.protocol(&length);
    return {bytes, bytes + length};
}

std::string hexOf(const Bytes& bytes, const std::string& separator)
{
    std::string text;
    for (const uint8_t byte : bytes)
    {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += separator + digits;
    }
    return text;
}

unsigned bitwiseCrc(const Bytes& bytes, std::size_t size)
{
    unsigned crc = 0xFFFF;
    for (std::size_t bit = 0; bit < 8 * size; ++bit)
    {
        crc ^= bytes[bit / 8] >> bit % 8 & 1U;
        crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0x8408U : 0U);
    }
    return crc;
}

// Index of the first byte of a payload that must not be shown.
std::size_t firstSecret(const Bytes& payload)
{
    const auto at = [&](std::size_t i) { return i < payload.size() ? payload[i] : 0; };
    switch (at(0))
    {
    case 0xA0:
        return 1;
    case 0xA1:
        return 2;
    case 0xA2:
    case 0xA4:
        return 3;
    case 0xAD:
        return 4;
    case 0xA3:
        return 5;
    case 0xB2:
        return at(1) == 0xB0 || (at(2) & 0x08) != 0 ? 5 : SIZE_MAX;
    default:
        return SIZE_MAX;
    }
}

std::string maskedText(const Bytes& payload)
{
    std::string text = hexOf(payload, " ");
    for (std::size_t i = firstSecret(payload); i < payload.size(); ++i)
        text.replace(3 * i + 1, 2, "##");
    return text;
}

void checkFrame(const ZuProt& frame)
{
    const Bytes bytes = heldBy(frame);
    const std::size_t size = bytes.size();
    const std::size_t field = frame.lengthOfProtocol();
    const bool fits = size >= 2 && bytes[0] != 0 && field == size && field <= 32768;
    require(frame.isValidProtocol() ==
                (fits && bitwiseCrc(bytes, size - 2) == (bytes[size - 2] | bytes[size - 1] * 256U)),
            "a frame is valid when length and check sum fit");

    std::size_t payloadSize = 0;
    const uint8_t* payloadBytes = frame.payload(&payloadSize);
    const Bytes payload(payloadBytes, payloadBytes + payloadSize);
    const std::string shown = maskedText(payload);
    require(frame.payloadToString() == shown, "the payload's text hides the secret");
    const std::string whole = frame.protocolToString();
    require(whole.size() == 3 * size, "the frame's text shows every byte");
    require(payload.empty() || whole.compare(3 * frame.payloadOffset() + 1, 3 * payloadSize - 1, shown, 1) == 0,
            "and hides the same");
    ZuProt again;
    if (whole.find('#') == std::string::npos)
        require(again.stringToProtocol(whole) && heldBy(again) == bytes, "the text reads back");

    frame.crcOfProtocol();
    frame.busAddrOfProtocol();
    frame.directionOfProtocol();
    frame.commandOfProtocol();
    frame.statusOfProtocol();
    again = frame;
    again.copyBusAddrToEndOfPayload();
    require(heldBy(again).size() - size <= 1, "the bus address is one byte");
}

void checkPayload(const Bytes& bytes, uint8_t generation)
{
    ZuProt frame;
    if (!frame.setPayload(bytes.data(), bytes.size(), generation, 1, 7))
        return;
    require(frame.isValidProtocol(), "a built frame is valid");
    checkFrame(frame);
    std::string text;
    const ZuPayl payload(bytes.data(), bytes.size());
    payload.toString(text, ' ');
    require(text == maskedText(bytes), "the payload alone hides the same");
    ZuPayl again;
    require(again.fromString(text) == (text.find('#') == std::string::npos), "a text with a secret does not read back");
}
} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t kind = input.byte();
    if (kind == 't')
    {
        const std::string text = input.rest();
        ZuProt frame;
        if (frame.stringToProtocol(text))
            checkFrame(frame);
        Bytes buffer(kind % 7);
        std::size_t count = buffer.size();
        ZuProt::stringToPayload(text, buffer.data(), &count);
        ZuPayl().fromString(text);
        return 0;
    }
    const Bytes bytes = input.bytes(size);
    checkPayload(bytes, kind % 8);
    ZuProt frame;
    require(frame.stringToProtocol(hexOf(bytes, "")), "hexadecimal text is read");
    checkFrame(frame);
    return 0;
}
