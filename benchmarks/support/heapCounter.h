// Counts every allocation of the process, the libraries' included. Linking this file is what switches it on.
#ifndef BENCHMARKS_HEAP_COUNTER_H
#define BENCHMARKS_HEAP_COUNTER_H

#include <cstddef>

struct HeapCounter
{
    /** Calls of malloc(), calloc() and realloc() so far. */
    static std::size_t allocations();
    /** Bytes in use, as the allocator rounds them. */
    static std::size_t bytes();
};

#endif
