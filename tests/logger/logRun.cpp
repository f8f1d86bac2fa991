#include "tests/logger/logRun.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace
{
// Not among the files of the run, because they begin with a dot.
constexpr const char* consoleFile = ".console";
constexpr const char* resultFile = ".result";

std::mutex callbackMutex;
std::string callbackText;

void keepLine(void*, const char* line)
{
    const std::lock_guard lock(callbackMutex);
    callbackText += line;
    callbackText += '\n';
}

[[noreturn]] void runChild(const std::string& directory, const std::function<std::string()>& body)
{
    ::alarm(300);
    ::unsetenv("MIRN_LOGGER_CONGIG_FILE");
    std::filesystem::current_path(directory);
    if (std::freopen(consoleFile, "a", stdout) == nullptr)
        std::abort();
    const std::string result = body();
    std::ofstream(directory + "/" + resultFile) << result;
    std::exit(0);
}
} // namespace

const std::string fileHeader = "Log file of IVRA SDK\n\nOperating System: Linux\n\n\n";

LogRun::LogRun(const std::function<std::string()>& body)
{
    std::string directory = testing::TempDir() + "logRun-XXXXXX";
    if (::mkdtemp(directory.data()) == nullptr)
        throw std::runtime_error("no directory " + directory);
    std::fflush(nullptr); // or the child would write again what waits in the buffers
    const pid_t child = ::fork();
    if (child == 0)
        runChild(directory, body);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(0, status) << "the child did not end normally";

    result = contentOf(directory + "/" + resultFile);
    console = contentOf(directory + "/" + consoleFile);
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        if (entry.is_regular_file() && entry.path().filename().string()[0] != '.')
            files[entry.path().filename()] = contentOf(entry.path());
    std::filesystem::remove_all(directory);
}

void configure(std::string text)
{
    const std::string directory = std::filesystem::current_path();
    for (std::size_t at; (at = text.find("$DIR")) != std::string::npos;)
        text.replace(at, 4, directory);
    ZuLoggerGlobal::presetConfig(text.c_str());
}

void collectCallbacks() { ZuLoggerGlobal::presetCallback(nullptr, keepLine); }

std::string calledBack()
{
    const std::lock_guard lock(callbackMutex);
    return callbackText;
}

std::string contentOf(const std::string& path)
{
    std::stringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

std::vector<std::string> linesOf(const std::string& text)
{
    EXPECT_TRUE(text.empty() || text.back() == '\n') << "the last line has no end";
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string ProbeLogger::settings() const
{
    std::string text = logRelTime ? "rel" : "abs";
    text += logConsole ? " console" : "";
    text += logFileShared ? " shared" : "";
    text += logFilePerReader ? " own" : "";
    text += androidLogCat ? " logcat" : "";
    text += logFileName.empty() ? "" : " " + logFileName;
    if (udpSocket.socketFd >= 0)
        text += " " + udpSocket.address() + ":" + std::to_string(udpSocket.port());
    return text;
}
