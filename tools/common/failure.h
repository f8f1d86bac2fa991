// How a sub-command ends: with an exit code, or with one of these.
#ifndef ZUCOM_TOOLS_FAILURE_H
#define ZUCOM_TOOLS_FAILURE_H

#include <stdexcept>

// Exit codes of every sub-command; scripts rely on them.
enum ExitCode
{
    exitDone = 0,
    exitRefused = 1, // the reader or the device said no, or what was asked for was not found
    exitUsage = 2,   // the command line makes no sense
};

// The command line makes no sense: the text and a pointer to --help go to standard error.
struct UsageError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// The reader or the device said no: the text goes to standard error.
struct Refused : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

#endif
