// Waiting until a descriptor is readable, for any descriptor and against one deadline.
#pragma once

#include <cstdint>

#include <sys/time.h>

class ZuReadWait
{
public:
    // A fresh wait of the given time.
    explicit ZuReadWait(int64_t timeout_usec);

    // Waits for the rest of the time: 1 readable, 0 the time has passed, negative for a failure, as select() answers.
    // Throws std::bad_alloc, for descriptors of FD_SETSIZE and above only.
    int wait(int descriptor);

    // Starts anew with the full time.
    void restart();

    // Goes on waiting for what is left, after something was readable that was not worth a fresh wait. False when the
    // time had passed before already.
    bool resume();

private:
    int64_t timeout_usec_;
    timeval rest_;
    int64_t deadline_usec_; // on the monotonic clock; negative until the wait is resumed
};
