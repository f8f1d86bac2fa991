// Waiting with select().

#include "port/zuReadWait.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <vector>

#include <sys/select.h>

namespace
{
constexpr int64_t usecPerSecond = 1000000;

int64_t monotonicTime_usec()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * usecPerSecond + now.tv_nsec / 1000;
}

timeval toTimeval(int64_t usec)
{
    return {static_cast<time_t>(usec / usecPerSecond), static_cast<suseconds_t>(usec % usecPerSecond)};
}

// fd_set ends at FD_SETSIZE; the system call takes a set of any length.
int selectAbove(int descriptor, timeval& rest)
{
    constexpr auto bits = static_cast<std::size_t>(NFDBITS);
    const auto index = static_cast<std::size_t>(descriptor);
    std::vector<fd_mask> words(index / bits + 1);
    words[index / bits] = static_cast<fd_mask>(1UL << (index % bits));
    return ::select(descriptor + 1, reinterpret_cast<fd_set*>(words.data()), nullptr, nullptr, &rest);
}
} // namespace

ZuReadWait::ZuReadWait(int64_t timeout_usec) : timeout_usec_(timeout_usec) { restart(); }

int ZuReadWait::wait(int descriptor)
{
    if (descriptor >= FD_SETSIZE)
        return selectAbove(descriptor, rest_);
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(descriptor, &readable);
    return ::select(descriptor + 1, &readable, nullptr, nullptr, &rest_);
}

void ZuReadWait::restart()
{
    rest_ = toTimeval(timeout_usec_);
    deadline_usec_ = -1;
}

// select() leaves the time that was not slept in rest_, so the clock is read only where a wait is resumed.
bool ZuReadWait::resume()
{
    const int64_t now = monotonicTime_usec();
    if (deadline_usec_ < 0)
        deadline_usec_ = now + rest_.tv_sec * usecPerSecond + rest_.tv_usec;
    else if (now >= deadline_usec_)
        return false;
    rest_ = toTimeval(std::max<int64_t>(deadline_usec_ - now, 0));
    return true;
}
