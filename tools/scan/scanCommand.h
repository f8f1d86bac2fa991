// The sub-command zucom scan.
#ifndef ZUCOM_TOOLS_SCAN_COMMAND_H
#define ZUCOM_TOOLS_SCAN_COMMAND_H

#include "tools/common/program.h"

Action scanCommand(Options& options);

#endif
