/**
 * @file
 * The receive queue: cuts whole reader frames out of a byte stream.
 */
#ifndef ZU_PROT_QUEUE_H
#define ZU_PROT_QUEUE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <zucom/zucomExport.h>

/**
 * Collects received bytes and hands them out again as whole frames, one a call.
 *
 * One chunk of input takes four calls: next() for room, one read into it, addSize() with the count read, popProtocol().
 * The queue knows a frame's length and bus address only; it checks neither CRC nor content.
 *
 * Not synchronised; one thread uses a queue at a time. Cannot be copied.
 */
class ZUCOM_API ZuProtQueue
{
public:
    /** The bus address whose frames are handed out; 255, the initial value, accepts every address. */
    uint8_t busAddrFilter = 255;

    /** Forgets all bytes; the filter and the memory stay. */
    void clear();

    /**
     * Makes room for more bytes behind those that were received.
     *
     * The store ends behind the room: what addSize() did not take of earlier room is gone, and room that is added
     * without being written reads as zero bytes.
     *
     * @param n  Number of bytes wanted.
     * @return Where up to @p n bytes may be written; valid until the next call that is not addSize().
     * @throw std::length_error  No store can be that long; the queue is unchanged.
     * @throw std::bad_alloc     There is no memory for it; the queue is unchanged.
     */
    uint8_t* next(std::size_t n);

    /**
     * Takes bytes that were written to the room of next() as received.
     *
     * @param n  Number of bytes; more than the room counts as the whole room.
     */
    void addSize(std::size_t n);

    /**
     * Hands out the oldest whole frame. A frame for another bus address is dropped.
     *
     * @param dst  Receives the frame.
     * @param cap  Size of @p dst in bytes.
     * @return Length of the frame in bytes; 0 when it is not complete yet or was dropped; -1, with the queue unchanged,
     *         when the oldest byte begins no known kind of frame or the frame is longer than @p cap.
     */
    int64_t popProtocol(uint8_t* dst, std::size_t cap);

private:
    friend class ZucomPort;

    struct Release
    {
        void operator()(uint8_t* memory) const { std::free(memory); }
    };

    // next() for an owner that adds only what it wrote: the room is not cleared.
    ZUCOM_LOCAL uint8_t* unclearedRoom(std::size_t n)
    {
        if (n > capacity - fillEnd)
            makeRoom(n);
        storeEnd = fillEnd + n;
        return bytes.get() + fillEnd;
    }

    // addSize() for the same owner: no more than the room.
    ZUCOM_LOCAL void addReceived(std::size_t n)
    {
        fillEnd += n;
        if (dirtyEnd < fillEnd)
            dirtyEnd = fillEnd;
    }

    ZUCOM_LOCAL std::size_t fill() const { return fillEnd - front; }
    ZUCOM_LOCAL std::size_t header(std::size_t index) const;
    ZUCOM_LOCAL void makeRoom(std::size_t n);

    std::unique_ptr<uint8_t[], Release> bytes;
    std::size_t capacity = 0; // of bytes
    // Places in bytes. Taking a frame moves the front and nothing else.
    std::size_t front = 0;    // the oldest byte
    std::size_t fillEnd = 0;  // behind the bytes received
    std::size_t storeEnd = 0; // behind the room for more
    std::size_t dirtyEnd = 0; // from here on every byte is zero
};

#endif
