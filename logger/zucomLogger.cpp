// The logger of one port.

#include <zucom/zucomLogger.h>

#include <zucom/zuParameter.h>

#include "logger/zuLogCondition.h"
#include "logger/zuLogPiece.h"
#include "logger/zuLogSwitch.h"

ZucomLogger::ZucomLogger(int32_t portHandle) : ZuLoggerBase("ZUCOM", portHandle) { setLogConditions(); }

void ZucomLogger::setLogConditions(const char* section, char separator)
{
    std::string tag;
    std::string value;
    for (const char* position = section; position != nullptr;)
    {
        position = ZuParameter::parseSection(position, tag, value, separator, true);
        const uint32_t condition = tag == "logtrace"   ? ZuLogCondition::trace
                                   : tag == "logerror" ? ZuLogCondition::error
                                                       : 0;
        logConditions = isSwitchedOn(value) ? logConditions | condition : logConditions & ~condition;
    }
}

std::string ZucomLogger::printProt(const uint8_t* bytes, std::size_t count)
{
    std::string text;
    appendText(text, ZuDump{bytes, count});
    return text;
}
