/**
 * @file
 * The rules of the receive queue, written down without a thought for speed: what tests and fuzzers compare with.
 */
#ifndef TESTS_SDK_QUEUE_MODEL_H
#define TESTS_SDK_QUEUE_MODEL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace queueModel
{
using Bytes = std::vector<uint8_t>;

struct Popped
{
    int64_t result;
    Bytes frame;
    bool operator==(const Popped&) const = default;
};

struct Model
{
    Bytes store;
    std::size_t fill = 0;
    uint8_t filter = 255;

    void add(const Bytes& bytes, std::size_t room, std::size_t count)
    {
        store.resize(fill);
        store.resize(fill + room);
        std::copy(bytes.begin(), bytes.end(), store.begin() + static_cast<std::ptrdiff_t>(fill));
        fill = std::min(fill + count, store.size());
    }

    uint8_t at(std::size_t index) const { return index < store.size() ? store[index] : uint8_t{0}; }

    void clear()
    {
        store.clear();
        fill = 0;
    }

    Popped pop(std::size_t capacity)
    {
        if (store.empty())
            return {0, {}};
        const uint8_t first = at(0);
        if (first == 0 || first == 1 || first == 4)
            return {-1, {}};
        const bool isLong = first == 2 || first == 3;
        const std::size_t length = isLong ? static_cast<std::size_t>(at(1) << 8 | at(2)) : first;
        const uint8_t address = at(first == 2 ? 3 : first == 3 ? 5 : 1);
        if (fill < length)
            return {0, {}};
        if (length > capacity)
            return {-1, {}};
        const Bytes frame(store.begin(), store.begin() + static_cast<std::ptrdiff_t>(length));
        store.erase(store.begin(), store.begin() + static_cast<std::ptrdiff_t>(length));
        fill -= length;
        if (address != 255 && address != filter && filter != 255)
            return {0, {}};
        return {static_cast<int64_t>(length), frame};
    }
};

} // namespace queueModel

#endif
