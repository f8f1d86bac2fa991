// The receive queue: received bytes in one block, from which whole frames are taken at the front.
//
// Taking a frame only moves the front, and room is handed out uncleared wherever no byte was received before. So a
// receive costs what its bytes cost, however large the caller's buffer is and however many frames wait.

#include <zucom/zuProtQueue.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

namespace
{
constexpr std::size_t maxStore = PTRDIFF_MAX;
constexpr std::size_t blockSize = 4096;

constexpr uint8_t broadcast = 255;
} // namespace

void ZuProtQueue::clear()
{
    front = 0;
    fillEnd = 0;
    storeEnd = 0;
}

uint8_t* ZuProtQueue::next(std::size_t n)
{
    uint8_t* room = unclearedRoom(n);
    if (dirtyEnd > fillEnd)
    {
        const std::size_t clearedEnd = std::min(dirtyEnd, storeEnd);
        std::memset(room, 0, clearedEnd - fillEnd);
        if (clearedEnd == dirtyEnd)
            dirtyEnd = fillEnd;
    }
    return room;
}

void ZuProtQueue::addSize(std::size_t n) { addReceived(std::min(n, storeEnd - fillEnd)); }

int64_t ZuProtQueue::popProtocol(uint8_t* dst, std::size_t cap)
{
    if (storeEnd == front)
        return 0;

    std::size_t frameLength = header(0);
    std::size_t address = 0;
    switch (frameLength)
    {
    case 0:
    case 1:
    case 4:
        return -1;
    case 2:
    case 3:
        address = header(frameLength == 2 ? 3 : 5);
        frameLength = header(1) << 8 | header(2);
        break;
    default:
        address = header(1);
    }
    if (frameLength == 0 || fill() < frameLength)
        return 0;
    if (frameLength > cap)
        return -1;

    const bool accepted = address == broadcast || address == busAddrFilter || busAddrFilter == broadcast;
    if (accepted)
        std::memcpy(dst, bytes.get() + front, frameLength);
    front += frameLength;
    return accepted ? static_cast<int64_t>(frameLength) : 0;
}

// A header byte that was not received yet reads as zero.
inline std::size_t ZuProtQueue::header(std::size_t index) const { return index < fill() ? bytes[front + index] : 0; }

// The block has room for the waiting bytes twice. So when they are moved to its front, at least as many have left
// before, and moving costs no more than receiving did.
void ZuProtQueue::makeRoom(std::size_t n)
{
    const std::size_t waiting = fill();
    if (n > maxStore - waiting)
        throw std::length_error("ZuProtQueue::next");
    const std::size_t wanted = waiting > maxStore - waiting - n ? maxStore : waiting + waiting + n;
    if (wanted > capacity)
    {
        const std::size_t grown =
            wanted > maxStore - blockSize ? maxStore : (wanted + blockSize - 1) / blockSize * blockSize;
        std::unique_ptr<uint8_t[], Release> block(static_cast<uint8_t*>(std::calloc(grown, 1)));
        if (!block)
            throw std::bad_alloc();
        if (waiting > 0)
            std::memcpy(block.get(), bytes.get() + front, waiting);
        bytes = std::move(block);
        capacity = grown;
        dirtyEnd = waiting;
    }
    else
    {
        std::memmove(bytes.get(), bytes.get() + front, waiting);
    }
    front = 0;
    fillEnd = waiting;
}
