/**
 * @file
 * Stands between the code under test and the device functions of the system: records, fails, shortens, delays them.
 */
#ifndef TESTS_SUPPORT_DEVICE_FAULTS_H
#define TESTS_SUPPORT_DEVICE_FAULTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <linux/serial.h>
#include <termios.h>

/**
 * While an object lives, open, fcntl, tcgetattr, tcsetattr, tcflush, ioctl, select, read, write, close and nanosleep of
 * its own thread go through it, on what is opened meanwhile and on descriptors that are none; everything else reaches
 * the system directly. One object at a time on a thread.
 *
 * Each call is kept as a text, for example "tcsetattr(fd, TCSANOW, 9600 8E1 raw)"; "fd" is the descriptor opened last.
 * Rules name calls by the beginning of that text and a number: 1 for the first call that begins so, 0 for every one.
 *
 * The terminal behind the descriptor behaves as a serial driver does: settings that change nothing are no error, RS485
 * settings and modem lines exist and are kept in the members. Time is virtual: it stands still, except that nanosleep
 * and a select that waits in vain let it pass at once. Time that an action before a select lets pass counts as waited.
 */
class DeviceFaults
{
public:
    using Action = std::function<void()>;

    serial_rs485 rs485{};     /**< what the driver keeps */
    int modemLines = 0;       /**< likewise, TIOCM_ bits */
    bool hasRs485 = true;     /**< whether the driver knows RS485 */
    bool virtualTime = true;  /**< whether waiting takes no time */
    int lowestDescriptor = 0; /**< what is opened gets a descriptor from here on */

    DeviceFaults();
    DeviceFaults(const DeviceFaults&) = delete;
    DeviceFaults& operator=(const DeviceFaults&) = delete;
    ~DeviceFaults();

    /** Lets a call fail without reaching the system. */
    void fail(const std::string& call, int nth, int error);
    /** Answers a call without reaching the system. */
    void answer(const std::string& call, int nth, long result);
    /** Lets a read or write reach the system with at most @p count bytes. */
    void shorten(const std::string& call, int nth, std::size_t count);
    /** Runs an action before a call; the calls of the action itself are neither recorded nor touched. */
    void before(const std::string& call, int nth, Action action);
    /** Forgets all rules. */
    void clearRules();

    /** @return The calls since the last time, oldest first. */
    std::vector<std::string> take();

    /** @return Microseconds of virtual time since construction. */
    int64_t elapsed() const { return clock_usec_ - start_usec_; }
    /** Lets virtual time pass; negative to set the clock back. */
    void advance(int64_t usec) { clock_usec_ += usec; }

    /** @return The descriptor opened last, or -1 when it was closed. */
    int descriptor() const { return descriptor_; }

    /** @return Settings in the form of the recorded calls. */
    static std::string lineText(const termios& line);

private:
    friend struct DeviceCalls;

    struct Rule
    {
        std::string call;
        int nth;
        Action action;
        bool answers;
        long result;
        int error;
        std::size_t limit;
        int seen = 0;
    };

    Rule* apply(const std::string& text, std::size_t* limit);
    void add(const std::string& call, int nth, Action action, bool answers, long result, int error, std::size_t limit);

    std::vector<Rule> rules_;
    std::vector<std::string> calls_;
    std::set<int> opened_;
    int descriptor_ = -1;
    int64_t start_usec_;
    int64_t clock_usec_;
};

#endif
