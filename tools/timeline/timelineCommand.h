// zucom timeline: where the time went, by a log of the library.
#ifndef ZUCOM_TOOLS_TIMELINE_COMMAND_H
#define ZUCOM_TOOLS_TIMELINE_COMMAND_H

#include "tools/common/program.h"

Action timelineCommand(Options& options);

#endif
