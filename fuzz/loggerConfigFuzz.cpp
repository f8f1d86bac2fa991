// A configuration from its text to the outputs that a line reaches.

#include <zucom/zucomLogger.h>

#include <climits>

#include <fcntl.h>
#include <sys/socket.h>

#include "fuzz/fuzz.h"
#include "fuzz/parameterModel.h"

namespace
{
using fuzz::require;

// The library reads its configuration once and has no way to do so again, and needs none: an explicit instantiation may
// name a private member, so the text of the one configuration object is exchanged behind its back.
std::string& configTextOf(ZuLoggerGlobal& global);

template <std::string ZuLoggerGlobal::*Text>
struct ConfigText
{
    friend std::string& configTextOf(ZuLoggerGlobal& global) { return global.*Text; }
};
template struct ConfigText<&ZuLoggerGlobal::configText>;

// Where the line went; the functions below keep it from really going there.
struct Reached
{
    std::vector<std::string> files;
    int console = 0;
    int datagrams = 0;
};
Reached reached;

struct Logger : ZucomLogger
{
    using ZucomLogger::ZucomLogger;
    using ZuLoggerBase::logConditions;
    using ZuLoggerBase::logRelTime;
    using ZuLoggerBase::udpSocket;
};

// What a configuration asks for, worked out in another way: of each group of keys only the last entry matters.
class Wanted
{
public:
    explicit Wanted(const std::string& text)
    {
        for (const auto& entry : parameterModel::entries(parameterModel::section(text, "OUTPUTTER"), '\n', true))
            output(entry.tag, entry.value);
        for (const auto& entry : parameterModel::entries(parameterModel::section(text, "ZUCOM"), '\n', true))
        {
            trace_ = entry.tag == "logtrace" ? isOn(entry.value) : trace_;
            error_ = entry.tag == "logerror" ? isOn(entry.value) : error_;
        }
    }

    uint32_t conditions() const { return (trace_ ? 1U : 0U) | (error_ ? 0x80000000U : 0U); }
    bool relativeTime() const { return relative_; }
    bool console() const { return console_; }

    std::string file() const
    {
        if (file_ == none)
            return {};
        std::string path = path_;
        std::replace(path.begin(), path.end(), '\\', '/');
        return path + "/" + (stem_.empty() ? "log-" + g_loggerTimeRef.startDateTime : stem_) + "-ZUCOM" +
               (file_ == own ? "-RH5" : "") + ".log";
    }

    bool datagrams() const
    {
        const bool isAddress = ZuSocket::isIPv4Address(address_) || ZuSocket::isIPv6Address(address_);
        return address_.substr(0, 1) == "/" || (isAddress && port_ >= 1 && port_ <= 65535);
    }

private:
    enum File
    {
        none,
        shared,
        own
    };

    static bool isOn(const std::string& value) { return value != "off" && value != "0"; }

    void output(const std::string& tag, const std::string& value)
    {
        const bool on = isOn(value);
        if (tag == "logreltime" || tag == "logabstime")
            relative_ = on == (tag == "logreltime");
        else if (tag == "logconsole")
            console_ = on;
        else if (tag == "logfileshared")
            file_ = on ? shared : file_ == shared ? none : file_;
        else if (tag == "logfileperreader")
            file_ = on ? own : file_ == own ? none : file_;
        else if (tag == "logpath")
            path_ = value;
        else if (tag == "logfile")
            stem_ = value;
        else if (tag == "logudpaddr")
            address_ = value;
        else if (tag == "logudpport")
            port_ = std::strtoll(value.c_str(), nullptr, 10);
    }

    bool trace_ = false, error_ = false, relative_ = false, console_ = false;
    File file_ = none;
    std::string path_ = ".", stem_, address_;
    long long port_ = -1;
};
} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives the names
extern "C"
{
    int __wrap_open(const char* path, int flags, ...);
    int __wrap_puts(const char* text);
    ssize_t __wrap_sendto(int fd, const void* data, size_t size, int flags, const sockaddr* address, socklen_t length);
    int __real_open(const char* path, int flags, ...);

    int __wrap_open(const char* path, int, ...)
    {
        reached.files.emplace_back(path);
        return __real_open("/dev/null", O_WRONLY | O_CLOEXEC);
    }

    int __wrap_puts(const char*) { return ++reached.console; }

    ssize_t __wrap_sendto(int, const void*, size_t size, int, const sockaddr*, socklen_t)
    {
        ++reached.datagrams;
        return static_cast<ssize_t>(size);
    }
}
// NOLINTEND(bugprone-reserved-identifier)

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string text = fuzz::Input(data, size).textUpTo('\0');
    configTextOf(*ZuLoggerGlobal::instance()) = text;
    const Wanted wanted(text);
    reached = {};
    Logger logger(5);
    require(logger.logConditions == wanted.conditions(), "the conditions");
    require(logger.logRelTime == wanted.relativeTime(), "the form of the time");
    require((logger.udpSocket.socketFd >= 0) == wanted.datagrams(), "whether there is a datagram output");
    logger.writeLogMessage(logger.currentLogTime(), " here", text);
    require(reached.console == wanted.console(), "a line on the console");
    require(reached.datagrams == wanted.datagrams(), "a datagram");
    require(reached.files.empty() == wanted.file().empty(), "a line in a file");
    for (const std::string& file : reached.files)
        require(file == wanted.file(), "the name of the file");
    return 0;
}
