// The base of all loggers: configuration of the outputs, the line format, and the outputs.

#include <zucom/zuLoggerBase.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <zucom/zuHelper.h>
#include <zucom/zuParameter.h>

#include "logger/zuLogSwitch.h"
#include "sdk/asciiText.h"

namespace
{
constexpr int64_t usecPerSecond = 1000000;

// The configured port; -1 where there is none or it does not fit.
int32_t readPort(const std::string& value)
{
    if (value.empty())
        return -1;
    const long number = std::strtol(value.c_str(), nullptr, 10);
    return number >= INT_MIN && number <= INT_MAX ? static_cast<int32_t>(number) : -1;
}

// Appends a number with leading zeros up to the width.
void appendPadded(std::string& text, uint32_t number, std::size_t width)
{
    std::array<char, 10> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const auto count = static_cast<std::size_t>(end - digits.data());
    if (count < width)
        text.append(width - count, '0');
    text.append(digits.data(), count);
}

// Appends the date of a second. It is converted once a second, since that costs more than the rest of a line. Plain
// memory, because threads may log while their thread-local objects are destroyed.
void appendDateTime(std::string& text, int64_t second)
{
    thread_local int64_t convertedSecond = 0;
    thread_local std::size_t size = 0;
    thread_local std::array<char, 64> converted;
    if (size == 0 || second != convertedSecond)
    {
        size = ZuLoggerBase::dateTimeString(second).copy(converted.data(), converted.size());
        convertedSecond = second;
    }
    text.append(converted.data(), size);
}

// One write for line and line end keeps lines whole also between processes that append to the same file. Copying a
// line of usual length costs less than a gathered write. What cannot be written is lost: logging never reports its own
// failures.
void writeWhole(int file, const std::string& line)
{
    std::array<char, 512> copy;
    [[maybe_unused]] ssize_t written = 0;
    if (line.size() < copy.size())
    {
        copy[line.copy(copy.data(), line.size())] = '\n';
        written = ::write(file, copy.data(), line.size() + 1);
        return;
    }
    char lineEnd = '\n';
    const std::array<iovec, 2> parts{{{const_cast<char*>(line.data()), line.size()}, {&lineEnd, 1}}};
    written = ::writev(file, parts.data(), static_cast<int>(parts.size()));
}

class SharedFileLock
{
public:
    explicit SharedFileLock(ZuLoggerGlobal& global) : global_(global), headerPending_(global.mutexSharedFileLock()) {}
    ~SharedFileLock() { global_.mutexSharedFileUnlock(); }
    SharedFileLock(const SharedFileLock&) = delete;
    SharedFileLock& operator=(const SharedFileLock&) = delete;

    bool headerPending() const { return headerPending_; }

private:
    ZuLoggerGlobal& global_;
    bool headerPending_;
};
} // namespace

ZuLoggerBase::ZuLoggerBase(const std::string& name, int32_t id)
    : loggerGlobal(ZuLoggerGlobal::instance()),
      loggerName(toUpperString(name)),
      loggerId(id),
      logConditions(0),
      logFileHeaderPending(true)
{
    setOutPutterParameter();
}

ZuLoggerBase::~ZuLoggerBase() { closeDatagramOutput(); }

void ZuLoggerBase::setLogConditions()
{
    setLogConditions(loggerGlobal->configurationSection(loggerName).c_str(), '\n');
}

// ---- configuration of the outputs ----

void ZuLoggerBase::setOutPutterParameter()
{
    logRelTime = false;
    logConsole = false;
    logFileShared = false;
    logFilePerReader = false;
    androidLogCat = false;
    logFileName.clear();
    closeDatagramOutput();

    OutputTexts texts;
    applyOutputEntries(texts);

    if (texts.stem.empty())
        texts.stem = "log-" + g_loggerTimeRef.startDateTime;
    if (logFileShared || logFilePerReader)
    {
        logFileName = ZuHelper::pathToNativeSeparators(texts.path.c_str()) + "/" + texts.stem + "-" + loggerName;
        if (logFilePerReader)
            logFileName += "-RH" + std::to_string(loggerId);
        logFileName += ".log";
    }
    if (!texts.address.empty())
        openDatagramOutput(texts.address, readPort(texts.port));
}

void ZuLoggerBase::applyOutputEntries(OutputTexts& texts)
{
    struct Switch
    {
        const char* key;
        bool ZuLoggerBase::*member;
        bool valueWhenOn;
        bool ZuLoggerBase::*clearedWhenOn;
    };
    static constexpr Switch switches[] = {
        {"logreltime", &ZuLoggerBase::logRelTime, true, nullptr},
        {"logabstime", &ZuLoggerBase::logRelTime, false, nullptr},
        {"logconsole", &ZuLoggerBase::logConsole, true, nullptr},
        {"logfileshared", &ZuLoggerBase::logFileShared, true, &ZuLoggerBase::logFilePerReader},
        {"logfileperreader", &ZuLoggerBase::logFilePerReader, true, &ZuLoggerBase::logFileShared},
        {"androidlogcat", &ZuLoggerBase::androidLogCat, true, nullptr},
    };
    struct Text
    {
        const char* key;
        std::string OutputTexts::*member;
    };
    static constexpr Text textKeys[] = {
        {"logpath", &OutputTexts::path},
        {"logfile", &OutputTexts::stem},
        {"logudpaddr", &OutputTexts::address},
        {"logudpport", &OutputTexts::port},
    };

    const std::string section = loggerGlobal->configurationSection("OUTPUTTER");
    std::string tag;
    std::string value;
    for (const char* position = section.c_str(); position != nullptr;)
    {
        position = ZuParameter::parseSection(position, tag, value, '\n', true);
        const bool on = isSwitchedOn(value);
        for (const Switch& entry : switches)
        {
            if (tag != entry.key)
                continue;
            this->*entry.member = on == entry.valueWhenOn;
            if (on && entry.clearedWhenOn != nullptr)
                this->*entry.clearedWhenOn = false;
        }
        for (const Text& entry : textKeys)
            if (tag == entry.key)
                texts.*entry.member = value;
    }
}

void ZuLoggerBase::openDatagramOutput(const std::string& address, int32_t port)
{
    udpSocket.socketType = SOCK_DGRAM;
    udpSocket.createByAddress(address, port);
    if (udpSocket.socketFd < 0)
        return;
    // A collector that does not read must not hold a port, and child processes have no use for the socket.
    ::fcntl(udpSocket.socketFd, F_SETFL, O_NONBLOCK);
    ::fcntl(udpSocket.socketFd, F_SETFD, FD_CLOEXEC);
}

void ZuLoggerBase::closeDatagramOutput()
{
    if (udpSocket.socketFd >= 0)
        ::close(udpSocket.socketFd);
    udpSocket.clear();
}

// ---- the line ----

std::string ZuLoggerBase::currentLogTime() const
{
    int64_t second = 0;
    const int64_t now = ZuLoggerTimeRef::currentTime_usec(&second);
    std::string text;
    text.reserve(32);
    if (logRelTime)
    {
        const auto elapsed = static_cast<uint64_t>(now - g_loggerTimeRef.startTime_usec);
        appendPadded(text, static_cast<uint32_t>(elapsed / usecPerSecond), 4);
        text += '.';
        appendPadded(text, static_cast<uint32_t>(elapsed % usecPerSecond), 6);
    }
    else
    {
        appendDateTime(text, second);
        text += '.';
        appendPadded(text, static_cast<uint32_t>(now % usecPerSecond), 6);
    }
    return text;
}

std::string ZuLoggerBase::dateTimeString(int64_t seconds)
{
    const time_t time = seconds;
    tm local{};
    ::localtime_r(&time, &local);
    std::array<char, 64> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y.%m.%d-%H.%M.%S", &local)};
}

std::string ZuLoggerBase::classFunction(const std::stringstream& signature)
{
    const std::string text = signature.str();
    const std::size_t end = text.find('(');
    if (end == std::string::npos)
        return {};
    const std::string head = text.substr(0, end);
    const std::size_t blank = head.rfind(' ');
    return blank == std::string::npos ? head : head.substr(blank + 1);
}

std::string ZuLoggerBase::toUpperString(const std::string& text)
{
    std::string upper = text;
    for (char& c : upper)
        c = asciiText::toUpper(c);
    return upper;
}

std::string ZuLoggerBase::byteArrayLogString(const std::vector<uint8_t>& bytes)
{
    std::string text;
    text.reserve(3 * bytes.size());
    for (const uint8_t byte : bytes)
    {
        if (!text.empty())
            text += ' ';
        text += g_hexLookup.hexDigit[byte >> 4];
        text += g_hexLookup.hexDigit[byte & 0x0F];
    }
    return text;
}

std::string ZuLoggerBase::toLineString(const std::string& name, const std::string& time, const std::string& location,
                                       const std::string& message)
{
    constexpr std::string_view divider = " :: ";
    std::string line;
    line.reserve(time.size() + name.size() + location.size() + message.size() + 2 * divider.size());
    line += time;
    line += divider;
    line += name;
    line += location;
    line += divider;
    line += message;
    return line;
}

std::string ZuLoggerBase::toLineString(const std::string& time, const std::string& location,
                                       const std::string& message) const
{
    return toLineString(loggerName, time, location, message);
}

void ZuLoggerBase::writeLogMessage(const std::string& time, const std::string& location, const std::string& message)
{
    writeLogLine(toLineString(time, location, message));
}

// ---- the outputs ----

void ZuLoggerBase::writeLogLine(const std::string& line)
{
    if (logConsole)
    {
        const std::lock_guard lock(loggerGlobal->consoleMutex);
        std::puts(line.c_str());
    }
    if (logFileShared)
    {
        const SharedFileLock lock(*loggerGlobal);
        if (lock.headerPending())
            writeLineToFile_OpenClose(logFileName, loggerGlobal->logHeader());
        writeLineToFile_OpenClose(logFileName, line);
    }
    if (logFilePerReader)
    {
        const std::lock_guard lock(logFileMutex);
        if (logFileHeaderPending)
            writeLineToFile_OpenClose(logFileName, loggerGlobal->logHeader());
        logFileHeaderPending = false;
        writeLineToFile_OpenClose(logFileName, line);
    }
    if (udpSocket.socketFd >= 0)
        writeLineToUdpServer(line);
    loggerGlobal->logCallback(line);
}

void ZuLoggerBase::writeLineToFile_OpenClose(const std::string& path, const std::string& line)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0)
        return;
    writeWhole(file, line);
    ::close(file);
}

void ZuLoggerBase::writeLineToUdpServer(const std::string& line)
{
    std::string datagram;
    datagram.reserve(line.size() + 1);
    datagram += line;
    datagram += '\n';
    ::sendto(udpSocket.socketFd, datagram.data(), datagram.size(), 0,
             reinterpret_cast<const sockaddr*>(&udpSocket.socketAddress), udpSocket.sockAddrLen());
}

void ZuLoggerBase::writeLineToAndroidLogCat(const std::string&) {}
