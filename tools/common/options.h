// The options of one sub-command. The argument parser stands behind it in one file, as it takes long to compile.
#ifndef ZUCOM_TOOLS_OPTIONS_H
#define ZUCOM_TOOLS_OPTIONS_H

#include <cstdint>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

// Names are written as the parser takes them: "-n,--name" for an option, "name" for a positional argument. A value
// keeps what it held before unless the user gives another one; that default is shown by --help.
class Options
{
public:
    explicit Options(CLI::App& app);

    Options& flag(const char* names, bool& value, const char* help);
    Options& text(const char* names, std::string& value, const char* help);
    Options& texts(const char* names, std::vector<std::string>& values, const char* help);
    Options& choice(const char* names, std::string& value, const std::vector<std::string>& allowed, const char* help);
    Options& choice(const char* names, int& value, const std::vector<int>& allowed, const char* help);
    Options& number(const char* names, int& value, int lowest, int highest, const char* help);
    Options& number(const char* names, std::uint64_t& value, const char* help);

    Options& required();               // makes the latest one mandatory
    Options& footer(const char* text); // examples and notes below the help

private:
    CLI::App& app_;
    CLI::Option* latest_ = nullptr;
};

#endif
