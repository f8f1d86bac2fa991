// Where the fields of a frame lie, for bytes that need not be a whole frame.
#include "tools/explain/frameLayout.h"

#include <zucom/zuProtocol.h>

namespace
{

constexpr FrameLayout standardFrame{0, "standard", 0, 1, 1, 2};
constexpr FrameLayout advancedFrame{2, "advanced", 1, 2, 3, 4};
constexpr FrameLayout enhancedFrame{3, "enhanced", 1, 2, 5, 6};
constexpr std::uint8_t shortestStandardFrame = 5; // first bytes below are kinds, not lengths

} // namespace

const FrameLayout* layoutOf(ByteView bytes)
{
    if (bytes.empty())
        return nullptr;
    if (bytes[0] >= shortestStandardFrame)
        return &standardFrame;
    if (bytes[0] == advancedFrame.generation)
        return &advancedFrame;
    return bytes[0] == enhancedFrame.generation ? &enhancedFrame : nullptr;
}

std::size_t statedLength(ByteView bytes, const FrameLayout& layout)
{
    if (bytes.size() < layout.lengthAt + layout.lengthSize)
        return 0;
    std::size_t length = 0;
    for (const std::uint8_t byte : bytes.subspan(layout.lengthAt, layout.lengthSize))
        length = length << 8 | byte;
    return length;
}

bool isWholeFrame(ByteView bytes)
{
    const FrameLayout* layout = layoutOf(bytes);
    return layout && bytes.size() <= longestFrame && statedLength(bytes, *layout) == bytes.size() &&
           bytes.size() >= layout->payloadAt + crcSize &&
           ZuProt::crc16CheckSum(bytes.data(), bytes.size(), false) == 0; // over its own check sum too it gives 0
}

Bytes withLength(ByteView bytes, const FrameLayout& layout, std::size_t length)
{
    Bytes changed(bytes.begin(), bytes.end());
    for (std::size_t i = layout.lengthSize; i > 0 && layout.lengthAt + i <= changed.size(); --i, length >>= 8)
        changed[layout.lengthAt + i - 1] = static_cast<std::uint8_t>(length);
    return changed;
}

Bytes withCrc(ByteView bytes)
{
    Bytes changed(bytes.begin(), bytes.end());
    const std::uint16_t crc = ZuProt::crc16CheckSum(changed.data(), changed.size() - crcSize, false);
    changed[changed.size() - 2] = static_cast<std::uint8_t>(crc);
    changed[changed.size() - 1] = static_cast<std::uint8_t>(crc >> 8);
    return changed;
}
