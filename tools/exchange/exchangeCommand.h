// The sub-command zucom exchange.
#ifndef ZUCOM_TOOLS_EXCHANGE_COMMAND_H
#define ZUCOM_TOOLS_EXCHANGE_COMMAND_H

#include "tools/common/program.h"

Action exchangeCommand(Options& options);

#endif
