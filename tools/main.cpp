// The zucom program: one row for each sub-command, which lives in the folder of its name.
#include "tools/common/program.h"
#include "tools/doctor/doctorCommand.h"
#include "tools/exchange/exchangeCommand.h"
#include "tools/explain/explainCommand.h"
#include "tools/list/listCommand.h"
#include "tools/monitor/monitorCommand.h"
#include "tools/scan/scanCommand.h"
#include "tools/sim/simCommand.h"
#include "tools/timeline/timelineCommand.h"

namespace
{

constexpr Command commands[] = {
    {"doctor", "Find out step by step why a device does not work", doctorCommand},
    {"exchange", "Send frames to a reader and show its answers", exchangeCommand},
    {"explain", "Say what bytes, a log line or a whole log mean", explainCommand},
    {"list", "List the serial devices of this machine", listCommand},
    {"monitor", "Show the log of running programs live", monitorCommand},
    {"scan", "Find out at which speed, frame and bus address readers answer", scanCommand},
    {"sim", "Be a reader: simulate one on a pseudo-terminal", simCommand},
    {"timeline", "Draw where the time went, by a log of the library", timelineCommand},
};

} // namespace

int main(int argc, char** argv)
{
    return runProgram("Answers the question why a reader does not answer.", commands, argc, argv);
}
