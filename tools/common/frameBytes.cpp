// Frames and the bytes they are made of.
#include "tools/common/frameBytes.h"

#include "tools/common/hexText.h"

ZuProt frameOfBytes(std::span<const std::uint8_t> bytes)
{
    ZuProt frame;
    frame.stringToProtocol(hexText(bytes));
    return frame;
}

std::vector<std::uint8_t> bytesOfFrame(const ZuProt& frame)
{
    std::size_t length = 0;
    const std::uint8_t* bytes = frame.protocol(&length);
    return {bytes, bytes + length};
}

std::vector<std::uint8_t> payloadOfFrame(const ZuProt& frame)
{
    std::size_t length = 0;
    const std::uint8_t* bytes = frame.payload(&length);
    return {bytes, bytes + length};
}
