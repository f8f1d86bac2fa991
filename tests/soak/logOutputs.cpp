// Every output of the loggers at once, each line counted and looked at.
#include "tests/soak/logOutputs.h"

#include <chrono>
#include <filesystem>
#include <fstream>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <zucom/zuLoggerGlobal.h>

namespace
{

using namespace std::chrono_literals;

constexpr std::string_view loggerName = " :: ZUCOM PH=0x"; // behind "2026.11.16-18.39.36.123456"
constexpr std::size_t timeLength = 26;
constexpr auto patience = 60s; // ends a run that hangs, and nothing else

bool isWhole(std::string_view line)
{
    return line.find(loggerName) == timeLength && line.rfind(loggerName) == timeLength;
}

bool belongsToHeader(std::string_view line)
{
    return line.empty() || line == "Log file of IVRA SDK" || line == "Operating System: Linux";
}

} // namespace

LogOutputs::LogOutputs(const std::string& folder, const std::string& kindOfFile) : folder_(folder)
{
    console_ = fdopen(dup(STDOUT_FILENO), "w");
    int pipeEnds[2];
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder + "/socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int collector = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (console_ == nullptr || pipe(pipeEnds) != 0 || dup2(pipeEnds[1], STDOUT_FILENO) < 0 ||
        bind(collector, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::system_error(errno, std::generic_category(), "setting up the log outputs in " + folder);
    close(pipeEnds[1]);
    std::thread([this, pipeEnds] { readConsole(pipeEnds[0]); }).detach();
    std::thread([this, collector] { readDatagrams(collector); }).detach();

    ZuLoggerGlobal::presetCallback(this, callback);
    ZuLoggerGlobal::presetConfig(("[OUTPUTTER]\nlogconsole = on\nlogpath = " + folder + "\nlogfile = log\n" +
                                  kindOfFile + " = on\nlogudpaddr = " + address.sun_path +
                                  "\n[ZUCOM]\nlogtrace = on\nlogerror = on\n")
                                     .c_str());
}

std::vector<std::string> LogOutputs::compare()
{
    std::fflush(stdout);
    readFiles();
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (byConsole_ < byCallback_ && std::chrono::steady_clock::now() < giveUp)
        std::this_thread::sleep_for(1ms); // the pipe may hold lines still

    std::vector<std::string> wrong;
    const auto number = [](long value) { return std::to_string(value); };
    if (byConsole_ != byCallback_)
        wrong.push_back(number(byConsole_) + " lines on the console, " + number(byCallback_) + " by callback");
    if (byFile_ != byCallback_)
        wrong.push_back(number(byFile_) + " lines in files, " + number(byCallback_) + " by callback");
    if (byDatagram_ > byCallback_ || byDatagram_ == 0)
        wrong.push_back(number(byDatagram_) + " lines by datagram, " + number(byCallback_) + " by callback");
    if (const long torn = torn_.exchange(0); torn > 0)
        wrong.push_back(number(torn) + " lines that are not whole");
    return wrong;
}

void LogOutputs::callback(void* self, const char* line)
{
    auto& outputs = *static_cast<LogOutputs*>(self);
    outputs.count(outputs.byCallback_, line);
}

void LogOutputs::count(std::atomic<long>& counter, std::string_view line) { ++(isWhole(line) ? counter : torn_); }

void LogOutputs::readConsole(int descriptor)
{
    std::FILE* const lines = fdopen(descriptor, "r");
    char* line = nullptr;
    std::size_t room = 0;
    for (ssize_t length = 0; (length = getline(&line, &room, lines)) > 0;)
        count(byConsole_, std::string_view(line, static_cast<std::size_t>(length) - 1));
}

void LogOutputs::readDatagrams(int descriptor)
{
    static char line[65536];
    for (ssize_t length = 0; (length = recv(descriptor, line, sizeof line, 0)) > 0;)
        count(byDatagram_, std::string_view(line, static_cast<std::size_t>(length) - 1));
}

void LogOutputs::readFiles()
{
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
    {
        if (entry.path().extension() != ".log")
            continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);)
            if (!belongsToHeader(line))
                count(byFile_, line);
        std::filesystem::remove(entry.path());
    }
}
