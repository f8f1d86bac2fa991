#include "tests/support/deviceFaults.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <ctime>
#include <map>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

thread_local DeviceFaults* active = nullptr;

/** Hands the thread's calls to the system while it lives. */
class Aside
{
public:
    Aside() : faults_(active) { active = nullptr; }
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;
    ~Aside() { active = faults_; }

private:
    DeviceFaults* const faults_;
};

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string hex(unsigned long number)
{
    char text[20];
    snprintf(text, sizeof text, "0x%lx", number);
    return text;
}

template <class Number>
std::string nameOf(Number number, const std::map<Number, const char*>& names)
{
    const auto found = names.find(number);
    return found == names.end() ? hex(static_cast<unsigned long>(number)) : found->second;
}

} // namespace

/** What the functions below do with the active object. */
struct DeviceCalls
{
    static std::string fd(int descriptor)
    {
        return descriptor >= 0 && descriptor == active->descriptor_ ? "fd" : std::to_string(descriptor);
    }

    /** Records a call, then answers it by a rule or by the system. */
    template <class System>
    static long run(const std::string& text, System system)
    {
        std::size_t limit = SIZE_MAX;
        if (const DeviceFaults::Rule* const rule = active->apply(text, &limit))
        {
            if (rule->result < 0)
                errno = rule->error;
            return rule->result;
        }
        return system(*active, limit);
    }

    static int moved(const DeviceFaults& faults, int descriptor)
    {
        if (descriptor >= 0 && descriptor < faults.lowestDescriptor)
        {
            const Aside aside;
            const int low = descriptor;
            descriptor = ::fcntl(low, F_DUPFD, faults.lowestDescriptor);
            ::close(low);
        }
        return descriptor;
    }

    /** @return Whether a call on the descriptor is the test's business. */
    static bool watched(int descriptor) { return active && (descriptor < 0 || active->opened_.count(descriptor) != 0); }

    static int opened(int descriptor)
    {
        active->descriptor_ = descriptor;
        active->opened_.insert(descriptor);
        return descriptor;
    }

    static void closing(DeviceFaults& faults, int descriptor)
    {
        const Aside aside;
        ::ioctl(descriptor, TIOCNXCL); // a pseudo-terminal keeps exclusive access beyond the close
        if (descriptor == faults.descriptor_)
            faults.descriptor_ = -1;
    }

    static int64_t clock() { return active->clock_usec_; }
};

DeviceFaults::DeviceFaults()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    start_usec_ = clock_usec_ = now.tv_sec * 1000000L + now.tv_nsec / 1000;
    active = this;
}

DeviceFaults::~DeviceFaults() { active = nullptr; }

void DeviceFaults::add(const std::string& call, int nth, Action action, bool answers, long result, int error,
                       std::size_t limit)
{
    rules_.push_back({call, nth, std::move(action), answers, result, error, limit});
}

void DeviceFaults::fail(const std::string& call, int nth, int error) { add(call, nth, {}, true, -1, error, SIZE_MAX); }

void DeviceFaults::answer(const std::string& call, int nth, long result)
{
    add(call, nth, {}, true, result, 0, SIZE_MAX);
}

void DeviceFaults::shorten(const std::string& call, int nth, std::size_t count)
{
    add(call, nth, {}, false, 0, 0, count);
}

void DeviceFaults::before(const std::string& call, int nth, Action action)
{
    add(call, nth, std::move(action), false, 0, 0, SIZE_MAX);
}

void DeviceFaults::clearRules() { rules_.clear(); }

std::vector<std::string> DeviceFaults::take()
{
    std::vector<std::string> calls;
    calls.swap(calls_);
    return calls;
}

DeviceFaults::Rule* DeviceFaults::apply(const std::string& text, std::size_t* limit)
{
    calls_.push_back(text);
    const Aside aside;
    Rule* answering = nullptr;
    for (Rule& rule : rules_)
    {
        if (text.compare(0, rule.call.size(), rule.call) != 0)
            continue;
        ++rule.seen;
        if (rule.nth != 0 && rule.nth != rule.seen)
            continue;
        if (rule.action)
            rule.action();
        if (rule.answers && !answering)
            answering = &rule;
        *limit = std::min(*limit, rule.limit);
    }
    return answering;
}

std::string DeviceFaults::lineText(const termios& line)
{
    static const std::map<speed_t, const char*> speeds = {
        {B4800, "4800"},     {B9600, "9600"},     {B19200, "19200"},   {B38400, "38400"},  {B57600, "57600"},
        {B115200, "115200"}, {B230400, "230400"}, {B460800, "460800"}, {B921600, "921600"}};
    const tcflag_t frame = CSIZE | PARENB | PARODD | CSTOPB;
    const tcflag_t other = line.c_cflag & ~(frame | CBAUD | CBAUDEX);
    const int bits[] = {5, 6, 7, 8};
    std::string text = nameOf(cfgetospeed(&line), speeds);
    if (cfgetispeed(&line) != cfgetospeed(&line))
        text += "/" + nameOf(cfgetispeed(&line), speeds);
    text += ' ' + std::to_string(bits[(line.c_cflag & CSIZE) / CS6]);
    const bool odd = line.c_cflag & PARODD;
    text += !(line.c_cflag & PARENB) ? (odd ? "N(odd)" : "N") : (odd ? "O" : "E");
    text += line.c_cflag & CSTOPB ? '2' : '1';
    cc_t raw[NCCS] = {};
    raw[VMIN] = 1;
    if (other == 0 && line.c_iflag == (IGNBRK | INPCK) && line.c_oflag == 0 && line.c_lflag == 0 &&
        std::equal(raw, raw + NCCS, line.c_cc))
        return text + " raw";
    return text + " i" + hex(line.c_iflag) + " o" + hex(line.c_oflag) + " c" + hex(other) + " l" + hex(line.c_lflag) +
           " min" + std::to_string(line.c_cc[VMIN]) + " time" + std::to_string(line.c_cc[VTIME]);
}

namespace
{

std::string flagText(int flags)
{
    std::string text = (flags & O_ACCMODE) == O_RDWR ? "O_RDWR" : "no O_RDWR";
    if (flags & O_NOCTTY)
        text += "|O_NOCTTY";
    if (flags & O_NONBLOCK)
        text += "|O_NONBLOCK";
    const int rest = flags & ~(O_ACCMODE | O_NOCTTY | O_NONBLOCK);
    return rest ? text + "|" + hex(static_cast<unsigned long>(rest)) : text;
}

std::string setText(int count, const fd_set* set)
{
    std::string text = "{";
    const auto* const words = reinterpret_cast<const unsigned long*>(set);
    for (int descriptor = 0; set && descriptor < count; ++descriptor)
    {
        if (words[descriptor / 64] >> (descriptor % 64) & 1)
            text += (text.size() > 1 ? "," : "") + DeviceCalls::fd(descriptor);
    }
    return text + "}";
}

/** Waits without letting real time pass. */
int selectInVirtualTime(DeviceFaults& faults, int64_t waited, int count, fd_set* reading, timeval* timeout)
{
    const int64_t rest = std::max<int64_t>(timeout->tv_sec * 1000000L + timeout->tv_usec - waited, 0);
    *timeout = {rest / 1000000, rest % 1000000};
    pollfd device{count - 1, POLLIN, 0};
    const int ready = ::poll(&device, 1, 0);
    if (ready < 0 || (device.revents & POLLNVAL))
    {
        errno = EBADF;
        return -1;
    }
    if (ready > 0)
        return 1;
    faults.advance(rest);
    *timeout = {0, 0};
    auto* const words = reinterpret_cast<unsigned long*>(reading);
    words[(count - 1) / 64] &= ~(1UL << ((count - 1) % 64));
    return 0;
}

int serialIoctl(DeviceFaults& faults, int descriptor, unsigned long request, void* argument)
{
    const bool rs485 = request == TIOCGRS485 || request == TIOCSRS485;
    if (fcntl(descriptor, F_GETFD) < 0 || (rs485 && !faults.hasRs485))
    {
        errno = descriptor < 0 ? EBADF : ENOTTY;
        return -1;
    }
    switch (request)
    {
    case TIOCGRS485:
        *static_cast<serial_rs485*>(argument) = faults.rs485;
        return 0;
    case TIOCSRS485:
        faults.rs485 = *static_cast<serial_rs485*>(argument);
        return 0;
    case TIOCMGET:
        *static_cast<int*>(argument) = faults.modemLines;
        return 0;
    case TIOCMBIS:
        faults.modemLines |= *static_cast<int*>(argument);
        return 0;
    case TIOCMBIC:
        faults.modemLines &= ~*static_cast<int*>(argument);
        return 0;
    default:
        return next<int(int, unsigned long, ...)>("ioctl")(descriptor, request, argument);
    }
}

std::string ioctlText(int descriptor, unsigned long request, const void* argument)
{
    static const std::map<unsigned long, const char*> names = {{TIOCEXCL, "TIOCEXCL"},     {TIOCGRS485, "TIOCGRS485"},
                                                               {TIOCSRS485, "TIOCSRS485"}, {TIOCMGET, "TIOCMGET"},
                                                               {TIOCMBIS, "TIOCMBIS"},     {TIOCMBIC, "TIOCMBIC"}};
    std::string text = "ioctl(" + DeviceCalls::fd(descriptor) + ", " + nameOf(request, names);
    if (request == TIOCSRS485)
    {
        const auto& rs485 = *static_cast<const serial_rs485*>(argument);
        text += ", flags " + std::to_string(rs485.flags) + " delays " + std::to_string(rs485.delay_rts_before_send) +
                " " + std::to_string(rs485.delay_rts_after_send);
    }
    if (request == TIOCMBIS || request == TIOCMBIC)
        text += ", " + hex(static_cast<unsigned long>(*static_cast<const int*>(argument)));
    return text + ")";
}

} // namespace

// The system's functions, as the code under test finds them.

extern "C"
{
    int open(const char* path, int flags, ...)
    {
        va_list list;
        va_start(list, flags);
        const auto mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(list, mode_t) : 0;
        va_end(list);
        static auto* const system = next<int(const char*, int, ...)>("open");
        if (!active)
            return system(path, flags, mode);
        const long descriptor = DeviceCalls::run(std::string("open(") + path + ", " + flagText(flags) + ")",
                                                 [&](DeviceFaults& faults, std::size_t)
                                                 { return DeviceCalls::moved(faults, system(path, flags, mode)); });
        return DeviceCalls::opened(static_cast<int>(descriptor));
    }

    int fcntl(int descriptor, int command, ...)
    {
        va_list list;
        va_start(list, command);
        void* const argument = va_arg(list, void*);
        va_end(list);
        static auto* const system = next<int(int, int, ...)>("fcntl");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, command, argument);
        static const std::map<int, const char*> names = {
            {F_SETFL, "F_SETFL"}, {F_SETFD, "F_SETFD"}, {F_GETFL, "F_GETFL"}, {F_GETFD, "F_GETFD"}};
        return static_cast<int>(
            DeviceCalls::run("fcntl(" + DeviceCalls::fd(descriptor) + ", " + nameOf(command, names) + ", " +
                                 std::to_string(reinterpret_cast<intptr_t>(argument)) + ")",
                             [&](DeviceFaults&, std::size_t) { return system(descriptor, command, argument); }));
    }

    int tcgetattr(int descriptor, termios* line) noexcept
    {
        static auto* const system = next<int(int, termios*)>("tcgetattr");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, line);
        return static_cast<int>(DeviceCalls::run("tcgetattr(" + DeviceCalls::fd(descriptor) + ")",
                                                 [&](DeviceFaults&, std::size_t) { return system(descriptor, line); }));
    }

    int tcsetattr(int descriptor, int when, const termios* line) noexcept
    {
        static auto* const system = next<int(int, int, const termios*)>("tcsetattr");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, when, line);
        return static_cast<int>(DeviceCalls::run(
            "tcsetattr(" + DeviceCalls::fd(descriptor) + ", " + (when == TCSANOW ? "TCSANOW" : "later") + ", " +
                DeviceFaults::lineText(*line) + ")",
            [&](DeviceFaults&, std::size_t)
            {
                const int result = system(descriptor, when, line);
                return result < 0 && errno == EINVAL ? 0 : result; // the pseudo-terminal kept what it had
            }));
    }

    int tcflush(int descriptor, int queue) noexcept
    {
        static auto* const system = next<int(int, int)>("tcflush");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, queue);
        static const std::map<int, const char*> names = {
            {TCIFLUSH, "TCIFLUSH"}, {TCOFLUSH, "TCOFLUSH"}, {TCIOFLUSH, "TCIOFLUSH"}};
        return static_cast<int>(
            DeviceCalls::run("tcflush(" + DeviceCalls::fd(descriptor) + ", " + nameOf(queue, names) + ")",
                             [&](DeviceFaults&, std::size_t) { return system(descriptor, queue); }));
    }

    int ioctl(int descriptor, unsigned long request, ...) noexcept
    {
        va_list list;
        va_start(list, request);
        void* const argument = va_arg(list, void*);
        va_end(list);
        static auto* const system = next<int(int, unsigned long, ...)>("ioctl");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, request, argument);
        return static_cast<int>(DeviceCalls::run(ioctlText(descriptor, request, argument),
                                                 [&](DeviceFaults& faults, std::size_t)
                                                 {
                                                     const Aside aside;
                                                     return serialIoctl(faults, descriptor, request, argument);
                                                 }));
    }

    int select(int count, fd_set* reading, fd_set* writing, fd_set* failing, timeval* timeout)
    {
        static auto* const system = next<int(int, fd_set*, fd_set*, fd_set*, timeval*)>("select");
        if (!DeviceCalls::watched(count - 1))
            return system(count, reading, writing, failing, timeout);
        const std::string text = "select(" + setText(count, reading) +
                                 (count == active->descriptor() + 1 ? "" : " of " + std::to_string(count)) +
                                 (writing || failing ? " and others" : "") + ", " +
                                 std::to_string(timeout->tv_sec * 1000000L + timeout->tv_usec) +
                                 (timeout->tv_usec < 1000000 ? " us)" : " us, not normalised)");
        const int64_t start = active->elapsed();
        return static_cast<int>(DeviceCalls::run(text,
                                                 [&](DeviceFaults& faults, std::size_t)
                                                 {
                                                     if (faults.virtualTime)
                                                         return selectInVirtualTime(faults, faults.elapsed() - start,
                                                                                    count, reading, timeout);
                                                     return system(count, reading, writing, failing, timeout);
                                                 }));
    }

    ssize_t read(int descriptor, void* buffer, size_t size)
    {
        static auto* const system = next<ssize_t(int, void*, size_t)>("read");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, buffer, size);
        return DeviceCalls::run("read(" + DeviceCalls::fd(descriptor) + ", " + std::to_string(size) + ")",
                                [&](DeviceFaults&, std::size_t limit)
                                { return system(descriptor, buffer, std::min(size, limit)); });
    }

    ssize_t write(int descriptor, const void* buffer, size_t size)
    {
        static auto* const system = next<ssize_t(int, const void*, size_t)>("write");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor, buffer, size);
        return DeviceCalls::run("write(" + DeviceCalls::fd(descriptor) + ", " + std::to_string(size) + ")",
                                [&](DeviceFaults&, std::size_t limit)
                                { return system(descriptor, buffer, std::min(size, limit)); });
    }

    int close(int descriptor)
    {
        static auto* const system = next<int(int)>("close");
        if (!DeviceCalls::watched(descriptor))
            return system(descriptor);
        // A close that reports an error has closed all the same.
        bool done = false;
        const auto closeNow = [&](DeviceFaults& faults, std::size_t)
        {
            done = true;
            DeviceCalls::closing(faults, descriptor);
            return system(descriptor);
        };
        const long result = DeviceCalls::run("close(" + DeviceCalls::fd(descriptor) + ")", closeNow);
        if (!done)
            closeNow(*active, 0);
        return static_cast<int>(result);
    }

    int nanosleep(const timespec* wanted, timespec* remaining)
    {
        static auto* const system = next<int(const timespec*, timespec*)>("nanosleep");
        if (!active)
            return system(wanted, remaining);
        const long nanoseconds = wanted->tv_sec * 1000000000L + wanted->tv_nsec;
        const long result = DeviceCalls::run("nanosleep(" + std::to_string(nanoseconds) + " ns)",
                                             [&](DeviceFaults& faults, std::size_t)
                                             {
                                                 if (!faults.virtualTime)
                                                     return system(wanted, remaining);
                                                 faults.advance(nanoseconds / 1000);
                                                 return 0;
                                             });
        if (result < 0 && errno == EINTR) // as if a signal came after three quarters
        {
            active->advance(nanoseconds * 3 / 4 / 1000);
            *remaining = {0, nanoseconds / 4};
        }
        return static_cast<int>(result);
    }

    int clock_gettime(clockid_t clock, timespec* now) noexcept
    {
        if (!active || !active->virtualTime)
            return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
        now->tv_sec = DeviceCalls::clock() / 1000000;
        now->tv_nsec = DeviceCalls::clock() % 1000000 * 1000;
        return 0;
    }
}
