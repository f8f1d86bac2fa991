// zucom explain: what bytes, a log line or a whole log mean.
#ifndef ZUCOM_TOOLS_EXPLAIN_COMMAND_H
#define ZUCOM_TOOLS_EXPLAIN_COMMAND_H

#include "tools/common/program.h"

Action explainCommand(Options& options);

#endif
