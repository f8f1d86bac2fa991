// Waiting until a descriptor is readable, for any descriptor and against one deadline.
#pragma once

#include <algorithm>
#include <cstddef>
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
        fd_mask words[FD_SETSIZE / NFDBITS];
        return select(descriptor, words);
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

    // The system call reads the set up to the descriptor only, so no more of it is filled in.
    int select(int descriptor, fd_mask* words)
    {
        constexpr std::size_t bits = NFDBITS;
        const auto index = static_cast<std::size_t>(descriptor);
        std::fill_n(words, index / bits, fd_mask{0});
        words[index / bits] = static_cast<fd_mask>(1UL << (index % bits));
        return ::select(descriptor + 1, reinterpret_cast<fd_set*>(words), nullptr, nullptr, &rest_);
    }

    int waitAboveSetSize(int descriptor);

    int64_t timeout_usec_;
    timeval rest_;
    int64_t deadline_usec_; // on the monotonic clock, once the wait was resumed
};
