// Runs inside the virtual machine and does what the test cases on the outside ask for: one line in, one line out.
// `start COMMAND…` starts a command on a thread of its own, `blocked select` or `blocked gate` waits until that thread
// waits there, and `end` until it is through; it answers the result, the processor time in ms and the number of reads.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <grp.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <zucom/zucom.h>

namespace
{
// The gate: a device function that is named here holds the thread of `start` before it reaches the device.
std::string gatedFunction;
const int gate = eventfd(0, EFD_CLOEXEC);
thread_local bool stopsAtGate = false;

void passGate(const char* function)
{
    if (!stopsAtGate || gatedFunction != function)
        return;
    gatedFunction.clear();
    pollfd opened{gate, POLLIN, 0};
    poll(&opened, 1, -1);
    uint64_t token = 0;
    (void)!::read(gate, &token, sizeof token);
}

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
} // namespace

extern "C" int tcsetattr(int descriptor, int when, const termios* settings) noexcept
{
    passGate("tcsetattr");
    return next<int(int, int, const termios*)>("tcsetattr")(descriptor, when, settings);
}

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    passGate("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return next<int(int, unsigned long, void*)>("ioctl")(descriptor, request, argument);
}

extern "C" int close(int descriptor)
{
    passGate("close");
    return next<int(int)>("close")(descriptor);
}

namespace
{
// A device opened beside the port, to see what the driver keeps; root may although the port has it exclusively.
class Device
{
public:
    explicit Device(const std::string& path) : descriptor(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)) {}
    ~Device() { ::close(descriptor); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    const int descriptor;
};

std::string failureOr(int result, const std::string& text) { return result < 0 ? strerrorname_np(errno) : text; }

std::vector<uint8_t> bytesFromHex(const std::string& text)
{
    std::vector<uint8_t> bytes;
    for (std::size_t at = 0; at + 1 < text.size(); at += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(text.substr(at, 2), nullptr, 16)));
    return bytes;
}

using Words = std::istream;

template <class Value>
Value take(Words& words)
{
    Value value{};
    words >> value;
    return value;
}

std::string withValue(int result, const char* value)
{
    return std::to_string(result) + (result == 0 ? std::string(" ") + value : "");
}

std::string openPort(Words& words) { return std::to_string(ZUCOM_OpenPort(take<std::string>(words).c_str())); }

std::string closePort(Words& words) { return std::to_string(ZUCOM_ClosePort(take<int>(words))); }

std::string setParameter(Words& words)
{
    const int port = take<int>(words);
    const auto key = take<std::string>(words);
    return std::to_string(ZUCOM_SetPortPara(port, key.c_str(), take<std::string>(words).c_str()));
}

std::string getParameter(Words& words)
{
    const int port = take<int>(words);
    char value[64] = "";
    const int result = ZUCOM_GetPortPara(port, take<std::string>(words).c_str(), value);
    return withValue(result, value);
}

std::string portCommand(Words& words)
{
    const int port = take<int>(words);
    const auto command = take<std::string>(words);
    char value[64] = "";
    take<std::string>(words).copy(value, sizeof value - 1);
    const int result = ZUCOM_DoPortCmd(port, command.c_str(), value);
    return withValue(result, value);
}

std::string transmit(Words& words)
{
    const int port = take<int>(words);
    const auto bytes = bytesFromHex(take<std::string>(words));
    return std::to_string(ZUCOM_Transmit(port, bytes.data(), bytes.size()));
}

// Transmits block after block until one fails.
std::string flood(Words& words)
{
    const int port = take<int>(words);
    const std::vector<uint8_t> block(take<std::size_t>(words), 5);
    int result = 0;
    while (result >= 0)
        result = ZUCOM_Transmit(port, block.data(), block.size());
    return std::to_string(result);
}

std::string receive(Words& words)
{
    static uint8_t buffer[65535];
    const int result = ZUCOM_Receive(take<int>(words), buffer, sizeof buffer);
    std::string answer = std::to_string(result) + " ";
    for (int at = 0; at < result; ++at)
    {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", buffer[at]);
        answer += digits;
    }
    return answer;
}

std::string lineSettings(Words& words)
{
    const Device device(take<std::string>(words));
    termios now{};
    const int result = tcgetattr(device.descriptor, &now);
    std::ostringstream text;
    text << std::hex << now.c_iflag << ' ' << now.c_oflag << ' ' << now.c_cflag << ' ' << now.c_lflag << ' '
         << int{now.c_cc[VMIN]} << ' ' << int{now.c_cc[VTIME]};
    return failureOr(result, text.str());
}

// The port leaves CREAD off, and the UART drivers, unlike the adapter's, then drop every byte that arrives.
std::string switchReceiverOn(Words& words)
{
    const Device device(take<std::string>(words));
    termios now{};
    int result = tcgetattr(device.descriptor, &now);
    now.c_cflag |= CREAD;
    if (result == 0)
        result = tcsetattr(device.descriptor, TCSANOW, &now);
    return failureOr(result, "0");
}

std::string rs485Settings(Words& words)
{
    const Device device(take<std::string>(words));
    serial_rs485 now{};
    const int result = ioctl(device.descriptor, TIOCGRS485, &now);
    std::ostringstream text;
    text << now.flags << ' ' << now.delay_rts_before_send << ' ' << now.delay_rts_after_send;
    return failureOr(result, text.str());
}

std::string setRs485(Words& words)
{
    const Device device(take<std::string>(words));
    serial_rs485 wanted{};
    words >> wanted.flags >> wanted.delay_rts_before_send >> wanted.delay_rts_after_send;
    return failureOr(ioctl(device.descriptor, TIOCSRS485, &wanted), "0");
}

// Switches modem lines of the device by their TIOCM bits, past the library.
std::string modemBits(Words& words)
{
    const Device device(take<std::string>(words));
    const bool on = take<std::string>(words) == "on";
    int bits = take<int>(words);
    return failureOr(ioctl(device.descriptor, on ? TIOCMBIS : TIOCMBIC, &bits), "0");
}

// Answers once so many bytes wait in the driver.
std::string queued(Words& words)
{
    const Device device(take<std::string>(words));
    const int wanted = take<int>(words);
    int count = 0;
    int result = 0;
    while (count < wanted && result >= 0)
    {
        std::this_thread::yield();
        result = ioctl(device.descriptor, FIONREAD, &count);
    }
    return failureOr(result, std::to_string(count));
}

// What a user without rights gets who opens the device himself, and what he gets from the library.
std::string plainUser(Words& words)
{
    const auto path = take<std::string>(words);
    int answer[2];
    if (chmod(path.c_str(), 0666) != 0 || pipe(answer) != 0)
        return strerrorname_np(errno);
    const pid_t child = fork();
    if (child == 0)
    {
        std::string text = "no rights were dropped";
        if (setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0)
        {
            const int descriptor = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
            text = failureOr(descriptor, "0");
            ::close(descriptor);
            const int port = ZUCOM_OpenPort(path.c_str());
            text += port < 0 ? " " + std::to_string(port) : " 0";
            ZUCOM_ClosePort(port);
        }
        (void)!::write(answer[1], text.data(), text.size());
        _exit(0);
    }
    ::close(answer[1]);
    char text[64] = "";
    (void)!::read(answer[0], text, sizeof text - 1);
    ::close(answer[0]);
    waitpid(child, nullptr, 0);
    return text;
}

std::string waitUntil(const std::string& path, bool present)
{
    const int watch = inotify_init1(IN_CLOEXEC);
    inotify_add_watch(watch, "/dev", IN_CREATE | IN_DELETE);
    while (std::filesystem::exists(path) != present)
    {
        char events[4096];
        (void)!::read(watch, events, sizeof events);
    }
    ::close(watch);
    return "0";
}

std::string waitPresent(Words& words) { return waitUntil(take<std::string>(words), true); }

std::string waitAbsent(Words& words) { return waitUntil(take<std::string>(words), false); }

std::string countDescriptors(Words&)
{
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::to_string(std::distance(begin(open), end(open)));
}

std::string armGate(Words& words)
{
    gatedFunction = take<std::string>(words);
    return "0";
}

std::string openGate(Words&)
{
    const uint64_t token = 1;
    return failureOr(static_cast<int>(::write(gate, &token, sizeof token)), "0");
}

std::string run(Words& words);

std::thread worker;
std::string workerAnswer;
std::atomic<int> workerThread;

long readCalls()
{
    std::ifstream counters("/proc/thread-self/io");
    std::string name;
    long value = -1;
    while (counters >> name >> value && name != "syscr:")
        continue;
    return value;
}

long processorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1000000;
}

void work(const std::string& line)
{
    stopsAtGate = true;
    workerThread = gettid();
    std::istringstream words(line);
    const long reads = readCalls();
    const long time = processorMilliseconds();
    const std::string answer = run(words);
    const long timeTaken = processorMilliseconds() - time;
    const long readsAfter = readCalls();
    const long readsOfLooking = readCalls() - readsAfter;
    workerAnswer =
        answer + " | " + std::to_string(timeTaken) + " " + std::to_string(readsAfter - reads - readsOfLooking);
}

std::string startWork(Words& words)
{
    std::string line;
    std::getline(words, line);
    workerThread = 0;
    worker = std::thread(work, line);
    while (workerThread == 0)
        std::this_thread::yield();
    return "0";
}

// Answers once the thread waits in the system call.
std::string waitUntilBlocked(Words& words)
{
    static const std::map<std::string, long> points = {{"select", SYS_pselect6}, {"gate", SYS_ppoll}};
    const std::string point = std::to_string(points.at(take<std::string>(words)));
    const std::string state = "/proc/self/task/" + std::to_string(workerThread) + "/syscall";
    std::string current;
    while (current != point)
    {
        std::this_thread::yield();
        std::ifstream(state) >> current;
    }
    return "0";
}

std::string endWork(Words&)
{
    worker.join();
    return workerAnswer;
}

std::string run(Words& words)
{
    static const std::map<std::string, std::function<std::string(Words&)>> commands = {
        {"open", openPort},         {"close", closePort},
        {"set", setParameter},      {"get", getParameter},
        {"command", portCommand},   {"transmit", transmit},
        {"flood", flood},           {"receive", receive},
        {"settings", lineSettings}, {"receiver", switchReceiverOn},
        {"rs485", rs485Settings},   {"setrs485", setRs485},
        {"modembits", modemBits},   {"queued", queued},
        {"plainuser", plainUser},   {"present", waitPresent},
        {"absent", waitAbsent},     {"descriptors", countDescriptors},
        {"gate", armGate},          {"opengate", openGate},
        {"start", startWork},       {"blocked", waitUntilBlocked},
        {"end", endWork},
    };
    const auto command = commands.find(take<std::string>(words));
    return command == commands.end() ? "unknown command" : command->second(words);
}
} // namespace

int main()
{
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);)
    {
        std::istringstream words(line);
        std::cout << run(words) << std::endl;
    }
}
