/**
 * @file
 * What the fuzz targets share: reading the input, and ending the program when something is not as it must be.
 */
#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace fuzz
{
/** Ends the program when the condition does not hold. @param what  What must hold, in words. */
inline void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

/** @return The text as a C function sees it. */
inline std::string upToZero(const std::string& text) { return text.substr(0, text.find('\0')); }

/** The input, taken from the front; behind its end all bytes are 0. */
class Input
{
public:
    Input(const uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool empty() const { return size_ == 0; }

    uint8_t byte() { return empty() ? uint8_t{0} : bytes(1).front(); }

    std::vector<uint8_t> bytes(std::size_t count)
    {
        count = std::min(count, size_);
        std::vector<uint8_t> taken(data_, data_ + count);
        data_ += count;
        size_ -= count;
        return taken;
    }

    /** Everything up to a byte, which is taken away, or up to the end. */
    std::string textUpTo(char end)
    {
        const auto* found = std::find(data_, data_ + size_, static_cast<uint8_t>(end));
        std::string text(data_, found);
        bytes(text.size() + 1);
        return text;
    }

    std::string rest()
    {
        const std::vector<uint8_t> all = bytes(size_);
        return {all.begin(), all.end()};
    }

private:
    const uint8_t* data_;
    std::size_t size_;
};
} // namespace fuzz

#endif
