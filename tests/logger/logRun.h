/**
 * @file
 * A process for every configuration, since a process reads its configuration once.
 */
#ifndef TESTS_LOGGER_LOG_RUN_H
#define TESTS_LOGGER_LOG_RUN_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <zucom/zucomLogger.h>

/**
 * Runs a piece of a test in a child process, in an empty directory of its own, and keeps what the child left there.
 *
 * The test fails when the child does not end normally. A child that hangs is ended after five minutes.
 */
class LogRun
{
public:
    /** @param body  Runs in the child; what it returns is result. */
    explicit LogRun(const std::function<std::string()>& body);

    std::string result;                       /**< what the body returned */
    std::string console;                      /**< what the child wrote to standard output */
    std::map<std::string, std::string> files; /**< content of the files that are left, by name */
};

/** Presets a configuration in which "$DIR" stands for the working directory. */
void configure(std::string text);

/** Presets a callback that collects lines for calledBack(). */
void collectCallbacks();

/** @return The lines that the callback was given, each with a line feed. */
std::string calledBack();

/** @return The whole file, or an empty text. */
std::string contentOf(const std::string& path);

/** A text divided at its line feeds; the last line must have one as well. */
std::vector<std::string> linesOf(const std::string& text);

/** The text that begins every log file. */
extern const std::string fileHeader;

/** A port logger that shows its settings. */
class ProbeLogger : public ZucomLogger
{
public:
    using ZucomLogger::ZucomLogger;
    using ZuLoggerBase::logConditions;
    using ZuLoggerBase::logFileName;
    using ZuLoggerBase::udpSocket;

    /** @return For example "abs console own ./stem-ZUCOM-RH1.log 127.0.0.1:4711". */
    std::string settings() const;

    /** Writes a line that reads "T :: ZUCOM L :: message". */
    void write(const std::string& message) { writeLogMessage("T", " L", message); }
};

#endif
