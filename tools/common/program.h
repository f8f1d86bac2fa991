// A program made of sub-commands.
#ifndef ZUCOM_TOOLS_PROGRAM_H
#define ZUCOM_TOOLS_PROGRAM_H

#include <functional>
#include <span>

class Options;

// Runs a sub-command whose options have been read; yields its exit code or throws what failure.h declares.
using Action = std::function<int()>;

struct Command
{
    const char* name;
    const char* summary;
    Action (*describe)(Options& options); // adds the options and yields what to run with them
};

// Reads the command line, runs the sub-command it names, reports failures. Returns the exit code.
int runProgram(const char* description, std::span<const Command> commands, int argc, char** argv);

#endif
