// What one step of the doctor found.
#ifndef ZUCOM_TOOLS_FINDING_H
#define ZUCOM_TOOLS_FINDING_H

#include <string>
#include <vector>

enum class Verdict
{
    ok,
    warn, // works, but perhaps not as wanted
    fail, // a reader cannot answer like this
};

struct Finding
{
    std::string step;
    Verdict verdict;
    std::string text;
    std::string remedy; // to paste into a shell, or what to do; empty when there is nothing to do
};

using Findings = std::vector<Finding>;

#endif
