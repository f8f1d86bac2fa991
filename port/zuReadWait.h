// Waiting until a descriptor is readable, for any descriptor and against one deadline.
#pragma once

#include <cstdint>

#include <sys/select.h>

class ZuReadWait
{
public:
    // A fresh wait of the given time.
    explicit ZuReadWait(int64_t timeout_usec) : timeout_usec_(timeout_usec) { restart(); }

    // Waits for the rest of the time: 1 readable, 0 the time has passed, negative for a failure, as select() answers.
    // Throws std::bad_alloc, for descriptors of FD_SETSIZE and above only.
    int wait(int descriptor)
    {
        if (descriptor >= FD_SETSIZE)
            return waitAboveSetSize(descriptor);
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(descriptor, &readable);
        return ::select(descriptor + 1, &readable, nullptr, nullptr, &rest_);
    }

    // Starts anew with the full time.
    void restart()
    {
        rest_ = toTimeval(timeout_usec_);
        deadline_usec_ = notResumed;
    }

    // Goes on waiting for what is left, after something was readable that was not worth a fresh wait. False when the
    // time had passed before already.
    bool resume();

private:
    static constexpr int64_t usecPerSecond = 1000000;
    static constexpr int64_t notResumed = -1;

    static timeval toTimeval(int64_t usec)
    {
        return {static_cast<time_t>(usec / usecPerSecond), static_cast<suseconds_t>(usec % usecPerSecond)};
    }

    int waitAboveSetSize(int descriptor);

    int64_t timeout_usec_;
    timeval rest_;
    int64_t deadline_usec_; // on the monotonic clock, once the wait was resumed
};
