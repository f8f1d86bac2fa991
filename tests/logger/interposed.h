/**
 * @file
 * Three functions of the system as the logger's objects see them, for tests to steer.
 */
#ifndef TESTS_LOGGER_INTERPOSED_H
#define TESTS_LOGGER_INTERPOSED_H

#include <cstdint>
#include <functional>
#include <string>

namespace interposed
{
/** Microseconds since the Unix epoch that the wall clock shows; negative for the real time. */
extern int64_t clockTime;
/** File that is opened in place of the configuration file of the system. */
extern std::string systemConfigFile;
/** Called before each datagram is sent. */
extern std::function<void()> beforeSend;
} // namespace interposed

#endif
