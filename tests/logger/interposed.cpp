#include "tests/logger/interposed.h"

#include <cstdio>
#include <cstring>
#include <ctime>

#include <sys/socket.h>

namespace interposed
{
int64_t clockTime = -1;
std::string systemConfigFile;
std::function<void()> beforeSend;
} // namespace interposed

// The linker puts these in place of the functions they are named after.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives the names
extern "C"
{
    int __real_clock_gettime(clockid_t clock, timespec* time);
    std::FILE* __real_fopen(const char* path, const char* mode);
    ssize_t __real_sendto(int fd, const void* data, size_t size, int flags, const sockaddr* address, socklen_t length);
    int __wrap_clock_gettime(clockid_t clock, timespec* time);
    std::FILE* __wrap_fopen(const char* path, const char* mode);
    ssize_t __wrap_sendto(int fd, const void* data, size_t size, int flags, const sockaddr* address, socklen_t length);

    int __wrap_clock_gettime(clockid_t clock, timespec* time)
    {
        if (clock != CLOCK_REALTIME || interposed::clockTime < 0)
            return __real_clock_gettime(clock, time);
        *time = {interposed::clockTime / 1000000, interposed::clockTime % 1000000 * 1000 + 999};
        return 0;
    }

    std::FILE* __wrap_fopen(const char* path, const char* mode)
    {
        const bool isSystemConfig = std::strcmp(path, "/etc/ivra/mirn.conf") == 0;
        return __real_fopen(isSystemConfig ? interposed::systemConfigFile.c_str() : path, mode);
    }

    ssize_t __wrap_sendto(int fd, const void* data, size_t size, int flags, const sockaddr* address, socklen_t length)
    {
        if (interposed::beforeSend)
            interposed::beforeSend();
        return __real_sendto(fd, data, size, flags, address, length);
    }
}
// NOLINTEND(bugprone-reserved-identifier)
