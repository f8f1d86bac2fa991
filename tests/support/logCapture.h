/**
 * @file
 * Every log line of the process, for tests to look at.
 */
#ifndef TESTS_SUPPORT_LOG_CAPTURE_H
#define TESTS_SUPPORT_LOG_CAPTURE_H

#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/**
 * Collects log lines through the callback, from construction to destruction.
 *
 * Construct the first one before the first port: the configuration is read once per process. Which lines are on is the
 * environment variable ZUCOM_TEST_LOG: "off", "trace", "error", or "both", which is also taken when it is unset.
 *
 * Each line is checked against the form "time :: ZUCOM PH=0x… TID=… ZucomPort::function:tag[ ERROR] :: message" and
 * kept in the short form "function:tag[ ERROR] :: message". At the end the test fails for every line with the error
 * mark that nobody took.
 */
class LogCapture
{
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /** @return The lines since the last call, in short form. */
    static Lines take();
    /** Makes these the lines since the last call. */
    static void putBack(Lines lines);

    /** @return Whether trace lines are on. */
    static bool trace();
    /** @return Whether error lines are on. */
    static bool error();

    /** @return Those of the lines that are written with the conditions that are on. */
    static Lines visible(Lines lines);
};

#endif
