// What does dlopen() of the library cost a C program, beside a C++ library that is otherwise empty?
//
//   zucom-bench-load LOADER LIBRARY EMPTY-LIBRARY ROUNDS
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

#include "benchmarks/support/pairedRun.h"

namespace
{
// A process loads a library once only, so each turn is a process of its own.
double load(const std::string& loader, const std::string& library)
{
    FILE* output = popen((loader + " " + library).c_str(), "r");
    double cost = 0;
    if (!output || fscanf(output, "%lf", &cost) != 1 || pclose(output) != 0)
        throw std::runtime_error("cannot load " + library);
    return cost;
}
} // namespace

int main(int argc, char** argv)
try
{
    if (argc != 5)
        return 2;
    PairedRun run;
    run.add("zucom", [&] { return load(argv[1], argv[2]); });
    run.add("empty", [&] { return load(argv[1], argv[3]); });
    run.run(std::atoi(argv[4]));
    report("load.beside-empty", run.ratio("zucom", "empty"));
    report("load.us", run.cost("zucom") / 1000);
    return 0;
}
catch (const std::exception& failure)
{
    std::cerr << "zucom-bench-load: " << failure.what() << '\n';
    return 1;
}
