// zucom monitor: the log of running programs, live.
#ifndef ZUCOM_TOOLS_MONITOR_COMMAND_H
#define ZUCOM_TOOLS_MONITOR_COMMAND_H

#include "tools/common/program.h"

Action monitorCommand(Options& options);

#endif
