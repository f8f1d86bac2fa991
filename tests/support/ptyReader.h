/**
 * @file
 * A scripted reader: the other end of a pseudo-terminal that a port opens like a serial device.
 */
#ifndef TESTS_SUPPORT_PTY_READER_H
#define TESTS_SUPPORT_PTY_READER_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include <termios.h>

using Bytes = std::vector<uint8_t>;

/**
 * Holds the master of a fresh pseudo-terminal in raw mode.
 *
 * It starts no thread: a test says when the reader writes. Whatever is written before the port waits is simply there.
 */
class PtyReader
{
public:
    PtyReader();
    PtyReader(const PtyReader&) = delete;
    PtyReader& operator=(const PtyReader&) = delete;
    ~PtyReader();

    /** @return Path of the device to open. */
    const char* path() const { return path_.c_str(); }

    /** @return The settings that the device has now. */
    termios line() const;

    /** Writes bytes to the port at once and waits until the device has them. */
    void write(const Bytes& bytes) const;

    /** Puts pieces aside for writeNext(). */
    void answers(std::vector<Bytes> pieces);

    /** Writes the next piece that answers() put aside, if there is one. */
    void writeNext();

    /** @return What the port has sent, at least @p count bytes; waits for them for up to 10 s. */
    Bytes read(std::size_t count) const;

    /** Ends the exclusive access that a port took: a pseudo-terminal keeps it beyond the close, a serial line does not.
     */
    void release() const;

    /** Closes the reader's end; the device of the port is gone then. */
    void hangUp();

private:
    std::string path_;
    int master_;
    int slave_; // kept open, so that a port that closes leaves a working device behind
    std::deque<Bytes> pieces_;
};

/** Puts lists one behind the other. */
template <class Item>
std::vector<Item> operator+(std::vector<Item> left, const std::vector<Item>& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

#endif
