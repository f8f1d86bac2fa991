#include "tools/exchange/exchangeCommand.h"

#include "tools/common/failure.h"

Action exchangeCommand(Options&)
{
    return [] { return exitUsage; };
}
