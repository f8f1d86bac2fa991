// The system's wall clock as the ports count with it.
#pragma once

#include <cstdint>
#include <ctime>

// Milliseconds since the epoch, truncated.
inline uint64_t systemTime_msec()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000 + static_cast<uint64_t>(now.tv_nsec) / 1000000;
}
