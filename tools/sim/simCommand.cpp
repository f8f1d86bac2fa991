#include "tools/sim/simCommand.h"

#include "tools/common/failure.h"

Action simCommand(Options&)
{
    return [] { return exitUsage; };
}
