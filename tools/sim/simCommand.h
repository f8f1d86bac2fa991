// The sub-command zucom sim.
#ifndef ZUCOM_TOOLS_SIM_COMMAND_H
#define ZUCOM_TOOLS_SIM_COMMAND_H

#include "tools/common/program.h"

Action simCommand(Options& options);

#endif
