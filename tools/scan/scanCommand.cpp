#include "tools/scan/scanCommand.h"

#include "tools/common/failure.h"

Action scanCommand(Options&)
{
    return [] { return exitUsage; };
}
