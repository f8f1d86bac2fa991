// What the driver of a serial line says when it is asked with a descriptor of our own.
#include "tools/doctor/lineChecks.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{

class Descriptor
{
public:
    explicit Descriptor(const std::string& path)
        : value_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) // NOLINT(*-vararg)
    {
    }
    ~Descriptor()
    {
        if (value_ >= 0)
            close(value_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return value_; }

private:
    int value_;
};

// Puts the settings back that were in force.
class SavedSettings
{
public:
    explicit SavedSettings(int descriptor) : descriptor_(descriptor) { known_ = tcgetattr(descriptor_, &saved_) == 0; }
    ~SavedSettings()
    {
        if (known_)
            tcsetattr(descriptor_, TCSANOW, &saved_);
    }
    SavedSettings(const SavedSettings&) = delete;
    SavedSettings& operator=(const SavedSettings&) = delete;

    bool known() const { return known_; }
    const termios& settings() const { return saved_; }

private:
    int descriptor_;
    bool known_;
    termios saved_{};
};

struct Speed
{
    int rate;
    speed_t code;
};

constexpr Speed speeds[] = {{4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},  {57600, B57600},
                            {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600}};

struct Frame
{
    const char* name;
    tcflag_t flags;
};

constexpr Frame frames[] = {{"8N1", CS8},          {"8E1", CS8 | PARENB}, {"8O1", CS8 | PARENB | PARODD},
                            {"8N2", CS8 | CSTOPB}, {"7E1", CS7 | PARENB}, {"7O1", CS7 | PARENB | PARODD}};
constexpr tcflag_t frameFlags = CSIZE | PARENB | PARODD | CSTOPB;

// Sets a line and looks what is in force afterwards: many drivers drop what they cannot do and report success.
bool takes(int descriptor, termios settings, speed_t speed, tcflag_t frame)
{
    cfmakeraw(&settings);
    settings.c_cflag = (settings.c_cflag & ~frameFlags) | frame | CREAD | CLOCAL;
    cfsetispeed(&settings, speed);
    cfsetospeed(&settings, speed);
    tcsetattr(descriptor, TCSANOW, &settings);
    termios inForce{};
    return tcgetattr(descriptor, &inForce) == 0 && cfgetospeed(&inForce) == speed &&
           (inForce.c_cflag & frameFlags) == frame;
}

void checkSettings(int descriptor, const SavedSettings& saved, Findings& findings)
{
    std::vector<std::string> refused;
    for (const Speed& speed : speeds)
        if (!takes(descriptor, saved.settings(), speed.code, CS8))
            refused.push_back(std::to_string(speed.rate));
    for (const Frame& frame : frames)
        if (!takes(descriptor, saved.settings(), B9600, frame.flags))
            refused.emplace_back(frame.name);
    if (refused.empty())
        findings.push_back({"settings", Verdict::ok, "the driver takes every speed and frame", ""});
    else
        findings.push_back({"settings", Verdict::warn,
                            fmt::format("the driver does not keep {}", fmt::join(refused, ", ")),
                            "set reader and program to a speed and frame that are not listed; pseudo-terminals know "
                            "no parity"});
}

void tryRs485(int descriptor, const serial_rs485& saved, Findings& findings)
{
    serial_rs485 asked = saved;
    asked.flags |= SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    serial_rs485 granted{};
    const bool accepted = ioctl(descriptor, TIOCSRS485, &asked) == 0;
    const std::string reason = accepted ? "it reports success and stays off" : std::strerror(errno);
    const bool taken =
        accepted && ioctl(descriptor, TIOCGRS485, &granted) == 0 && (granted.flags & SER_RS485_ENABLED) != 0;
    serial_rs485 back = saved;
    ioctl(descriptor, TIOCSRS485, &back);
    if (taken)
        findings.push_back({"RS485", Verdict::ok,
                            fmt::format("asked and granted: RTS {} while sending, delays {} and {} ms",
                                        (granted.flags & SER_RS485_RTS_ON_SEND) != 0 ? "high" : "low",
                                        granted.delay_rts_before_send, granted.delay_rts_after_send),
                            ""});
    else
        findings.push_back({"RS485", Verdict::fail,
                            "the driver reads RS485 settings but does not grant them: " + reason,
                            "use an adapter that switches the direction by itself, with OPMODE RS232"});
}

void checkRs485(int descriptor, const LineQuestions& questions, Findings& findings)
{
    serial_rs485 settings{};
    if (ioctl(descriptor, TIOCGRS485, &settings) != 0)
        findings.push_back(
            {"RS485", questions.rs485 ? Verdict::fail : Verdict::ok,
             "the driver knows no RS485 mode; OPMODE stays RS232",
             questions.rs485 ? "use an adapter that switches the direction by itself, with OPMODE RS232" : ""});
    else if (questions.rs485 && questions.change)
        tryRs485(descriptor, settings, findings);
    else
        findings.push_back(
            {"RS485", Verdict::ok,
             fmt::format("the driver knows RS485, {}", (settings.flags & SER_RS485_ENABLED) != 0 ? "on" : "off"), ""});
}

void checkModemLines(int descriptor, Findings& findings)
{
    constexpr struct
    {
        const char* name;
        int bit;
    } lines[] = {{"DTR", TIOCM_DTR}, {"RTS", TIOCM_RTS}, {"CTS", TIOCM_CTS}, {"DCD", TIOCM_CD}, {"DSR", TIOCM_DSR}};
    int state = 0;
    if (ioctl(descriptor, TIOCMGET, &state) != 0)
    {
        findings.push_back({"modem lines", Verdict::warn, "this device has none", ""});
        return;
    }
    std::vector<std::string> texts;
    for (const auto& line : lines)
        texts.push_back(fmt::format("{} {}", line.name, (state & line.bit) != 0 ? "on" : "off"));
    findings.push_back({"modem lines", Verdict::ok, fmt::format("{}", fmt::join(texts, ", ")), ""});
}

void checkCounters(int descriptor, Findings& findings)
{
    serial_icounter_struct count{};
    if (ioctl(descriptor, TIOCGICOUNT, &count) != 0)
    {
        findings.push_back({"counters", Verdict::ok, "the driver counts no errors", ""});
        return;
    }
    const struct
    {
        const char* name;
        int value;
        const char* remedy;
    } counters[] = {{"frame", count.frame, "wrong speed or noise: zucom scan finds the speed"},
                    {"parity", count.parity, "wrong frame: try 8N1 and 8E1"},
                    {"break", count.brk, "the line is open or its wires are crossed"},
                    {"overrun", count.overrun, "the hardware lost bytes: lower the speed"},
                    {"buffer overrun", count.buf_overrun, "the program reads too seldom"}};
    std::vector<std::string> seen;
    std::string remedy;
    for (const auto& counter : counters)
        if (counter.value > 0)
        {
            seen.push_back(fmt::format("{} {} errors", counter.value, counter.name));
            remedy += (remedy.empty() ? "" : "; ") + std::string(counter.remedy);
        }
    if (seen.empty())
        findings.push_back(
            {"counters", Verdict::ok,
             fmt::format("no errors since the driver was loaded, {} bytes received, {} sent", count.rx, count.tx), ""});
    else
        findings.push_back(
            {"counters", Verdict::warn, fmt::format("since the driver was loaded: {}", fmt::join(seen, ", ")), remedy});
}

void failOpening(const std::string& path, Findings& findings)
{
    const int reason = errno;
    findings.push_back({"opening", Verdict::fail, std::strerror(reason),
                        reason == EBUSY   ? "another program has it for itself: sudo fuser -v " + path
                        : reason == ENXIO ? "no hardware is behind this name: zucom list"
                                          : "look what the kernel says: dmesg | tail"});
}

} // namespace

bool checkLine(const std::string& path, const LineQuestions& questions, Findings& findings)
{
    const Descriptor descriptor(path);
    if (descriptor < 0)
    {
        failOpening(path, findings);
        return false;
    }
    const SavedSettings saved(descriptor);
    if (!saved.known())
    {
        const bool noTerminal = errno == ENOTTY;
        findings.push_back({"terminal", Verdict::fail,
                            noTerminal ? "opens, but is no serial line" : std::string("fails: ") + std::strerror(errno),
                            noTerminal ? "zucom list    # shows the serial devices"
                                       : "there is no working hardware behind it: dmesg | tail"});
        return false;
    }
    findings.push_back({"terminal", Verdict::ok, "opens and is a serial line", ""});
    if (questions.change)
        checkSettings(descriptor, saved, findings);
    checkRs485(descriptor, questions, findings);
    if (questions.modemLines)
        checkModemLines(descriptor, findings);
    checkCounters(descriptor, findings);
    return true;
}
