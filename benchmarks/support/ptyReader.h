// Readers in a process of their own behind pseudo-terminals: whatever they are asked, they give the same answer.
#ifndef BENCHMARKS_PTY_READER_H
#define BENCHMARKS_PTY_READER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

class PtyReader
{
public:
    /**
     * @param requestLength  Bytes that make a request.
     * @param answer         Written back after each request, in one write.
     * @param lines          Number of pseudo-terminals.
     */
    PtyReader(std::size_t requestLength, const std::vector<uint8_t>& answer, std::size_t lines = 1);
    PtyReader(const PtyReader&) = delete;
    PtyReader& operator=(const PtyReader&) = delete;
    ~PtyReader();

    /** Gives the first line its first settings back, so that every contender reads through the same one. */
    void resetLine() const;

    /** Path of the first line's device. */
    const std::string& path() const { return devices.front(); }
    const std::vector<std::string>& paths() const { return devices; }

private:
    pid_t process;
    int line = -1;
    std::vector<std::string> devices;
};

/** A reader frame of @p length bytes: a standard frame up to 255 bytes, beyond that an advanced one. */
std::vector<uint8_t> readerFrame(std::size_t length);

#endif
