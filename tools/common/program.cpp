// A program made of sub-commands: the only file that knows the argument parser.
#include "tools/common/program.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include <CLI/CLI.hpp>
#include <zucom/zucom.h>

#include "tools/common/failure.h"
#include "tools/common/options.h"

Options::Options(CLI::App& app) : app_(app) {}

Options& Options::flag(const char* names, bool& value, const char* help)
{
    latest_ = app_.add_flag(names, value, help);
    return *this;
}

Options& Options::text(const char* names, std::string& value, const char* help)
{
    latest_ = app_.add_option(names, value, help)->capture_default_str();
    return *this;
}

Options& Options::texts(const char* names, std::vector<std::string>& values, const char* help)
{
    latest_ = app_.add_option(names, values, help);
    if (*names == '-') // texts between commas; not the next argument, which may be a positional one
        latest_->allow_extra_args(false)->delimiter(',');
    return *this;
}

Options& Options::choice(const char* names, std::string& value, const std::vector<std::string>& allowed,
                         const char* help)
{
    latest_ = app_.add_option(names, value, help)->check(CLI::IsMember(allowed))->capture_default_str();
    return *this;
}

Options& Options::choice(const char* names, int& value, const std::vector<int>& allowed, const char* help)
{
    latest_ = app_.add_option(names, value, help)->check(CLI::IsMember(allowed));
    if (std::ranges::find(allowed, value) != allowed.end())
        latest_->capture_default_str();
    return *this;
}

Options& Options::number(const char* names, int& value, int lowest, int highest, const char* help)
{
    latest_ = app_.add_option(names, value, help)->check(CLI::Range(lowest, highest))->capture_default_str();
    return *this;
}

Options& Options::number(const char* names, std::uint64_t& value, const char* help)
{
    latest_ = app_.add_option(names, value, help)->capture_default_str();
    return *this;
}

Options& Options::required()
{
    latest_->required();
    return *this;
}

Options& Options::footer(const char* text)
{
    app_.footer(text);
    return *this;
}

namespace
{

int run(const Command& command, const Action& action)
{
    try
    {
        return action();
    }
    catch (const UsageError& error)
    {
        std::fprintf(stderr, "zucom %s: %s\nSee zucom %s --help.\n", command.name, error.what(), command.name);
        return exitUsage;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "zucom %s: %s\n", command.name, error.what());
        return exitRefused;
    }
}

} // namespace

int runProgram(const char* description, std::span<const Command> commands, int argc, char** argv)
{
    CLI::App program(description, "zucom");
    program.require_subcommand(1);
    program.set_version_flag("--version", ZUCOM_GetDLLVersion());
    program.footer(
        "zucom COMMAND --help tells more. Exit codes: 0 done, 1 the reader or device said no, 2 wrong usage.");

    std::vector<CLI::App*> parsers;
    std::vector<Action> actions;
    for (const Command& command : commands)
    {
        parsers.push_back(program.add_subcommand(command.name, command.summary));
        Options options(*parsers.back());
        actions.push_back(command.describe(options));
    }

    try
    {
        program.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        if (argc < 2)
        {
            std::fputs(program.help().c_str(), stderr);
            return exitUsage;
        }
        return program.exit(error) == 0 ? exitDone : exitUsage;
    }
    for (std::size_t i = 0; i < commands.size(); ++i)
        if (parsers[i]->parsed())
            return run(commands[i], actions[i]);
    return exitUsage;
}
