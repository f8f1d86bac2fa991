// A reader in a process of its own behind a pseudo-terminal: whatever it is asked, it gives the same answer.
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
     * @param silentPorts    Number of further pseudo-terminals behind which nobody answers.
     */
    PtyReader(std::size_t requestLength, const std::vector<uint8_t>& answer, std::size_t silentPorts = 0);
    PtyReader(const PtyReader&) = delete;
    PtyReader& operator=(const PtyReader&) = delete;
    ~PtyReader();

    /** Gives the line its first settings back, so that every contender reads through the same one. */
    void resetLine() const;

    /** Path of the device that answers. */
    const std::string& path() const { return paths.front(); }
    /** Paths of the devices that do not. */
    std::vector<std::string> silentPaths() const { return {paths.begin() + 1, paths.end()}; }

private:
    pid_t process;
    int line = -1;
    std::vector<std::string> paths;
};

/** A reader frame of @p length bytes: a standard frame up to 255 bytes, beyond that an advanced one. */
std::vector<uint8_t> readerFrame(std::size_t length);

#endif
