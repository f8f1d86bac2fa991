// Keys, values and commands of a port, on a device that accepts everything, refuses everything or both in turn.

#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>

#include "fuzz/fuzz.h"

namespace
{
using fuzz::require;

// The device as the functions below present it.
struct Device
{
    termios settings{};
    serial_rs485 rs485{};
    int lines = 0;
    uint8_t refusals = 0; // one bit for each call in turn
};
Device device;

bool refused()
{
    device.refusals = static_cast<uint8_t>(device.refusals << 1 | device.refusals >> 7);
    errno = EIO;
    return (device.refusals & 1) != 0;
}

// A buffer of the promised size and not a byte more.
class Answer
{
public:
    explicit Answer(std::size_t size) : bytes_(size, 0x7F) {}

    char* data() { return bytes_.data(); }

    std::string text() const
    {
        const auto end = std::find(bytes_.begin(), bytes_.end(), '\0');
        require(end != bytes_.end(), "the answer has an end");
        return {bytes_.begin(), end};
    }

private:
    std::vector<char> bytes_; // AddressSanitizer watches its end
};

std::string upper(std::string text)
{
    strtoup(text.data());
    return text;
}

// DEVICEPATH is as long as the value that was set last.
std::size_t answerSize(const std::string& key, std::size_t pathSize)
{
    return upper(key) == "DEVICEPATH" ? pathSize + 1 : std::size_t{ZUCOM_VALUE_SIZE};
}

class Operations
{
public:
    Operations() : port_("device") {}

    void open()
    {
        close();
        require(isOneOf(port_.openPort(), {ZUCOM_OK, ZUCOM_ERR_PORT_OBJECT}), "opening");
    }

    void close() { require(port_.closePort() == ZUCOM_OK, "closing"); }

    void set(const std::string& key, const std::string& value)
    {
        const std::string before = get(key);
        const int result = port_.setPortPara(key.c_str(), value.c_str());
        if (result == ZUCOM_OK && upper(key) == "DEVICEPATH")
            pathSize_ = value.size();
        require(isOneOf(result, {ZUCOM_OK, ZUCOM_ERR_ODD_PARAMETER, ZUCOM_ERR_UNKNOWN_PARAMETER, ZUCOM_ERR_OUT_OF_RANGE,
                                 ZUCOM_ERR_CHANGE_PARAMETER}),
                "a code of its own");
        require(result == ZUCOM_OK || lastError() == result, "the last error");
        const std::string after = get(key);
        require(result != ZUCOM_ERR_OUT_OF_RANGE || before == after, "a refused value changes nothing");
        if (result != ZUCOM_OK)
            return;
        require(port_.setPortPara(key.c_str(), after.c_str()) != ZUCOM_ERR_OUT_OF_RANGE, "an answer is a value");
        require(get(key) == after, "and means the same");
    }

    std::string get(const std::string& key)
    {
        Answer answer(answerSize(key, pathSize_));
        const int result = port_.getPortPara(key.c_str(), answer.data());
        require(isOneOf(result, {ZUCOM_OK, ZUCOM_ERR_ODD_PARAMETER, ZUCOM_ERR_UNKNOWN_PARAMETER}), "a code of its own");
        require((result == ZUCOM_ERR_ODD_PARAMETER) == (key.size() >= ZUCOM_KEY_LIMIT), "the limit of keys");
        return result == ZUCOM_OK ? answer.text() : std::string();
    }

    void command(const std::string& command, const std::string& value)
    {
        const bool fits = command.size() < ZUCOM_KEY_LIMIT && value.size() < ZUCOM_KEY_LIMIT;
        Answer answer(std::max(value.size() + 1, std::size_t{ZUCOM_COMMAND_VALUE_SIZE}));
        std::strcpy(answer.data(), value.c_str()); // NOLINT: sized for it
        const int result = port_.doPortCmd(command.c_str(), answer.data());
        require(isOneOf(result, {ZUCOM_OK, ZUCOM_ERR_OUT_OF_RANGE, ZUCOM_ERR_UNKNOWN_COMMAND, ZUCOM_ERR_FLUSH_INPUT,
                                 ZUCOM_ERR_FLUSH_OUTPUT, ZUCOM_ERR_CHANGE_PARAMETER, ZUCOM_ERR_READ_PARAMETER}),
                "a code of its own");
        require((result == ZUCOM_ERR_OUT_OF_RANGE) != fits, "the limit of commands and values");
        const bool answers = result == ZUCOM_OK && upper(command).substr(0, 3) == "GET";
        require(answers ? isOneOf(answer.text(), {"ON", "OFF"}) : answer.text() == value, "the answer");
    }

private:
    template <class Value>
    static bool isOneOf(const Value& value, std::initializer_list<std::common_type_t<Value>> values)
    {
        return std::find(values.begin(), values.end(), value) != values.end();
    }

    int lastError() { return std::stoi(get("ERRCODE")); }

    ZucomPort port_;
    std::size_t pathSize_ = std::strlen("device");
};

// Every line is composed, so that keys and values pass through the log as well.
void countLine(void*, const char* line) { require(std::strstr(line, " :: ZUCOM PH=0x") != nullptr, "a log line"); }
} // namespace

// The device functions of the port. Each fails with a bit of its own in turn.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives the names
extern "C"
{
    int __wrap_open(const char* path, int flags, ...);
    int __wrap_ioctl(int fd, unsigned long request, void* argument);
    int __wrap_tcgetattr(int fd, termios* settings);
    int __wrap_tcsetattr(int fd, int when, const termios* settings);
    int __wrap_tcflush(int fd, int queue);
    int __real_open(const char* path, int flags, ...);

    int __wrap_open(const char*, int, ...) { return refused() ? -1 : __real_open("/dev/null", O_RDWR | O_CLOEXEC); }

    int __wrap_ioctl(int, unsigned long request, void* argument)
    {
        if (refused())
            return -1;
        if (request == TIOCMGET)
            *static_cast<int*>(argument) = device.lines;
        else if (request == TIOCMBIS)
            device.lines |= *static_cast<const int*>(argument);
        else if (request == TIOCMBIC)
            device.lines &= ~*static_cast<const int*>(argument);
        else if (request == TIOCGRS485)
            *static_cast<serial_rs485*>(argument) = device.rs485;
        else if (request == TIOCSRS485)
            device.rs485 = *static_cast<const serial_rs485*>(argument);
        return 0;
    }

    int __wrap_tcgetattr(int, termios* settings)
    {
        *settings = device.settings;
        return refused() ? -1 : 0;
    }

    int __wrap_tcsetattr(int, int, const termios* settings)
    {
        if (refused())
            return -1;
        device.settings = *settings;
        return 0;
    }

    int __wrap_tcflush(int, int) { return refused() ? -1 : 0; }
}
// NOLINTEND(bugprone-reserved-identifier)

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const bool configured = []
    {
        ZuLoggerGlobal::presetConfig("[ZUCOM]\nlogtrace=on\nlogerror=on\n");
        ZuLoggerGlobal::presetCallback(nullptr, countLine);
        return true;
    }();
    require(configured, "a log");

    fuzz::Input input(data, size);
    device = {};
    device.refusals = input.byte();
    Operations operations;
    while (!input.empty())
    {
        const uint8_t operation = input.byte();
        const std::string name = fuzz::upToZero(input.textUpTo('='));
        const std::string value = fuzz::upToZero(input.textUpTo('\n'));
        if (operation == 's')
            operations.set(name, value);
        else if (operation == 'g')
            operations.get(name);
        else if (operation == 'c')
            operations.command(name, value);
        else if (operation == 'o')
            operations.open();
    }
    operations.close();
    return 0;
}
