// What waiting seldom needs: large descriptors, and the clock.

#include "port/zuReadWait.h"

#include <algorithm>
#include <ctime>
#include <vector>

namespace
{
int64_t monotonicTime_usec()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}
} // namespace

// fd_set ends at FD_SETSIZE; the system call takes a set of any length.
int ZuReadWait::waitAboveSetSize(int descriptor)
{
    constexpr std::size_t bits = NFDBITS;
    const auto index = static_cast<std::size_t>(descriptor);
    std::vector<fd_mask> words(index / bits + 1);
    words[index / bits] = static_cast<fd_mask>(1UL << (index % bits));
    return ::select(descriptor + 1, reinterpret_cast<fd_set*>(words.data()), nullptr, nullptr, &rest_);
}

// select() leaves the time that was not slept in rest_, so the clock is read only where a wait is resumed.
bool ZuReadWait::resume()
{
    const int64_t now = monotonicTime_usec();
    if (deadline_usec_ == notResumed)
        deadline_usec_ = now + rest_.tv_sec * usecPerSecond + rest_.tv_usec;
    else if (now >= deadline_usec_)
        return false;
    rest_ = toTimeval(std::max<int64_t>(deadline_usec_ - now, 0));
    return true;
}
