// zucom doctor: from the device node to the reader, step by step.
#ifndef ZUCOM_TOOLS_DOCTOR_COMMAND_H
#define ZUCOM_TOOLS_DOCTOR_COMMAND_H

#include "tools/common/program.h"

Action doctorCommand(Options& options);

#endif
