/**
 * @file
 * What all loggers of the process share: configuration, callback, start time, locks.
 */
#ifndef ZU_LOGGER_GLOBAL_H
#define ZU_LOGGER_GLOBAL_H

#include <cstdint>
#include <mutex>
#include <string>

#include <zucom/zucomExport.h>

/**
 * Receives every log line of every logger.
 *
 * Called on the thread that logs, with no lock of the library held, possibly from several threads at once. The line has
 * no line end and is valid during the call. The function may call into the library, but not on the port that logs.
 */
using ZuLogCallback = void (*)(void* context, const char* line);

/** What an application supplies before the first logger exists; the first logger takes it over. */
struct ZUCOM_API ZuLoggerPreset
{
    std::string presetText;                         /**< configuration text; empty means none */
    ZuLogCallback presetCallbackFunction = nullptr; /**< log callback, or null */
    void* presetCallbackContext = nullptr;          /**< first argument of the callback */
};

/** The one preset of the process; see ZuLoggerGlobal::presetConfig() and ZuLoggerGlobal::presetCallback(). */
extern ZUCOM_API ZuLoggerPreset g_loggerPreset;

/** Records when the library was loaded. */
class ZUCOM_API ZuLoggerTimeRef
{
public:
    int64_t startTime_usec;    /**< load time in microseconds since the Unix epoch */
    std::string startDateTime; /**< the same moment in local time, for example "2026.11.16-18.39.36" */

    /** Takes the time. */
    ZuLoggerTimeRef();

    /**
     * Reads the system's wall clock.
     *
     * @param seconds  Receives the whole seconds; may be null.
     * @return Microseconds since the Unix epoch.
     */
    static int64_t currentTime_usec(int64_t* seconds = nullptr);
};

/** The load time of the process. */
extern ZUCOM_API ZuLoggerTimeRef g_loggerTimeRef;

/**
 * Configuration and shared resources of all loggers.
 *
 * Created by the first logger, in this library by the first port, and kept until the process ends. The configuration
 * is the preset text when there is one; otherwise the file that the environment variable MIRN_LOGGER_CONGIG_FILE
 * names, or /etc/ivra/mirn.conf. It is read once; a file that cannot be read counts as empty.
 */
class ZUCOM_API ZuLoggerGlobal
{
public:
    /**
     * Supplies the configuration text. Has an effect only before the first logger exists; not synchronised.
     *
     * @param text  Configuration text (not a path); copied. Null or empty for none.
     */
    static void presetConfig(const char* text);

    /**
     * Supplies the log callback. Has an effect only before the first logger exists; not synchronised.
     *
     * @param context   First argument of every call; owned by the caller, must stay valid until the process ends.
     * @param function  The callback, or null for none.
     */
    static void presetCallback(void* context, ZuLogCallback function);

    /** @return The one object of the process, created by the first call. Any thread may call this. */
    static ZuLoggerGlobal* instance();

    /** @param name Name of a section. @return Its body in the configuration, or an empty text. */
    std::string configurationSection(const std::string& name);

    /**
     * Locks the shared log file; mutexSharedFileUnlock() must follow.
     *
     * @return Whether the caller has to write the header before its line.
     * @throw std::system_error  The lock cannot be taken.
     */
    bool mutexSharedFileLock();

    /** Notes that the header is written and unlocks the shared log file. */
    void mutexSharedFileUnlock();

    /** Hands a line to the application's callback when there is one. @param line The line, without a line end. */
    void logCallback(const std::string& line);

    /** @return "Operating System: Linux". */
    std::string getSystemInfo();

    /** @return The header of log files; valid until the process ends. */
    const std::string& logHeader();

private:
    friend class ZuLoggerBase;

    ZUCOM_LOCAL ZuLoggerGlobal();
    ZUCOM_LOCAL ~ZuLoggerGlobal() = default;
    ZuLoggerGlobal(const ZuLoggerGlobal&) = delete;
    ZuLoggerGlobal& operator=(const ZuLoggerGlobal&) = delete;

    std::string configText;
    ZuLogCallback logCallbackFunction;
    void* logCallbackContext;
    std::string headerText;
    std::mutex consoleMutex;
    std::mutex sharedFileMutex;
    bool sharedHeaderPending = true; // guarded by sharedFileMutex
};

#endif
