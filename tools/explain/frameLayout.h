// Where the fields of a frame lie, for bytes that need not be a whole frame.
#ifndef ZUCOM_TOOLS_FRAME_LAYOUT_H
#define ZUCOM_TOOLS_FRAME_LAYOUT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

struct FrameLayout
{
    int generation; // 0 standard, 2 advanced, 3 enhanced
    const char* name;
    std::size_t lengthAt;
    std::size_t lengthSize;
    std::size_t addressAt;
    std::size_t payloadAt;
};

constexpr std::size_t longestFrame = 32768; // bytes
constexpr std::size_t crcSize = 2;

// The layout that the first byte tells; null when it tells none.
const FrameLayout* layoutOf(ByteView bytes);

// The length field, or 0 when the bytes end before it.
std::size_t statedLength(ByteView bytes, const FrameLayout& layout);

// Whether kind, length field and check sum fit exactly these bytes.
bool isWholeFrame(ByteView bytes);

// The same bytes with another length field; cut to the width of the field.
Bytes withLength(ByteView bytes, const FrameLayout& layout, std::size_t length);

// The same bytes with the check sum renewed in the last two. There must be two or more.
Bytes withCrc(ByteView bytes);

#endif
