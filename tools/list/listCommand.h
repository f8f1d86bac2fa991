// zucom list: the serial devices of this machine.
#ifndef ZUCOM_TOOLS_LIST_COMMAND_H
#define ZUCOM_TOOLS_LIST_COMMAND_H

#include "tools/common/program.h"

Action listCommand(Options& options);

#endif
