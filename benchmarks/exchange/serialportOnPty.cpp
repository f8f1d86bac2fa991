// Lets libserialport open a pseudo-terminal: it looks for the device's name below /sys, where pseudo-terminals are not,
// and asks for modem lines, which they do not have. Both are asked at set-up only.
#include <cstdarg>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{
bool isPtyBelowSys(const char* path) { return std::strncmp(path, "/sys/class/tty/pts/", 19) == 0; }
} // namespace

// The form of lstat() that the packaged library was linked with.
extern "C" int __lxstat(int, const char* path, struct stat* status)
{
    if (!isPtyBelowSys(path))
        return lstat(path, status);
    *status = {};
    status->st_mode = S_IFLNK;
    return 0;
}

extern "C" ssize_t readlink(const char* path, char* target, size_t size)
{
    if (!isPtyBelowSys(path))
        return syscall(SYS_readlinkat, AT_FDCWD, path, target, size);
    static const char device[] = "pty";
    std::memcpy(target, device, sizeof device - 1);
    return sizeof device - 1;
}

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    switch (request)
    {
    case TIOCMGET:
        *static_cast<int*>(argument) = 0;
        return 0;
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC:
        return 0;
    default:
        return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
    }
}
