// The zucom program: one row for each sub-command, which lives in the folder of its name.
#include "tools/common/program.h"
#include "tools/exchange/exchangeCommand.h"
#include "tools/explain/explainCommand.h"
#include "tools/scan/scanCommand.h"
#include "tools/sim/simCommand.h"
#include "tools/timeline/timelineCommand.h"

namespace
{

constexpr Command commands[] = {
    {"exchange", "Send frames to a reader and show its answers", exchangeCommand},
    {"explain", "Say what bytes, a log line or a whole log mean", explainCommand},
    {"scan", "Find out at which speed, frame and bus address readers answer", scanCommand},
    {"sim", "Be a reader: simulate one on a pseudo-terminal", simCommand},
    {"timeline", "Draw where the time went, by a log of the library", timelineCommand},
};

} // namespace

int main(int argc, char** argv)
{
    return runProgram("Answers the question why a reader does not answer.", commands, argc, argv);
}
