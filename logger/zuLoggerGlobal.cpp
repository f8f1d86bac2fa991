// Preset, load time and configuration: what there is once per process.

#include <zucom/zuLoggerGlobal.h>

#include <cstdlib>
#include <ctime>
#include <utility>

#include <zucom/zuLoggerBase.h>
#include <zucom/zuParameter.h>

ZuLoggerPreset g_loggerPreset;
ZuLoggerTimeRef g_loggerTimeRef;

namespace
{
constexpr const char* configFileVariable = "MIRN_LOGGER_CONGIG_FILE"; // the spelling that installations use
constexpr const char* defaultConfigFile = "/etc/ivra/mirn.conf";

std::string readConfigFile()
{
    const char* path = std::getenv(configFileVariable);
    std::string content;
    ZuParameter::readFromFile(path != nullptr ? path : defaultConfigFile, content);
    return content;
}
} // namespace

ZuLoggerTimeRef::ZuLoggerTimeRef()
{
    int64_t seconds = 0;
    startTime_usec = currentTime_usec(&seconds);
    startDateTime = ZuLoggerBase::dateTimeString(seconds);
}

int64_t ZuLoggerTimeRef::currentTime_usec(int64_t* seconds)
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (seconds != nullptr)
        *seconds = now.tv_sec;
    return int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

void ZuLoggerGlobal::presetConfig(const char* text) { g_loggerPreset.presetText = text != nullptr ? text : ""; }

void ZuLoggerGlobal::presetCallback(void* context, ZuLogCallback function)
{
    g_loggerPreset.presetCallbackContext = context;
    g_loggerPreset.presetCallbackFunction = function;
}

// Never destroyed: ports may log while the process ends.
ZuLoggerGlobal* ZuLoggerGlobal::instance()
{
    static auto* const global = new ZuLoggerGlobal;
    return global;
}

std::string ZuLoggerGlobal::configurationSection(const std::string& name)
{
    return ZuParameter::getSection(configText.c_str(), name.c_str());
}

bool ZuLoggerGlobal::mutexSharedFileLock()
{
    sharedFileMutex.lock();
    return sharedHeaderPending;
}

void ZuLoggerGlobal::mutexSharedFileUnlock()
{
    sharedHeaderPending = false;
    sharedFileMutex.unlock();
}

void ZuLoggerGlobal::logCallback(const std::string& line)
{
    if (logCallbackFunction != nullptr)
        logCallbackFunction(logCallbackContext, line.c_str());
}

std::string ZuLoggerGlobal::getSystemInfo() { return "Operating System: Linux"; }

const std::string& ZuLoggerGlobal::logHeader() { return headerText; }

ZuLoggerGlobal::ZuLoggerGlobal()
    : logCallbackFunction(std::exchange(g_loggerPreset.presetCallbackFunction, nullptr)),
      logCallbackContext(std::exchange(g_loggerPreset.presetCallbackContext, nullptr)),
      headerText("Log file of IVRA SDK\n\n" + getSystemInfo() + "\n\n")
{
    configText = std::exchange(g_loggerPreset.presetText, {});
    if (configText.empty())
        configText = readConfigFile();
}
