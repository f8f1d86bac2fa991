#include "benchmarks/support/heapCounter.h"

#include <atomic>
#include <malloc.h>

extern "C"
{
    void* __libc_malloc(std::size_t size);
    void* __libc_calloc(std::size_t count, std::size_t size);
    void* __libc_realloc(void* memory, std::size_t size);
}

namespace
{
std::atomic<std::size_t> allocationCount{0};

void counted() { allocationCount.fetch_add(1, std::memory_order_relaxed); }
} // namespace

extern "C" void* malloc(std::size_t size)
{
    counted();
    return __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size)
{
    counted();
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* memory, std::size_t size)
{
    counted();
    return __libc_realloc(memory, size);
}

std::size_t HeapCounter::allocations() { return allocationCount.load(std::memory_order_relaxed); }

std::size_t HeapCounter::bytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}
