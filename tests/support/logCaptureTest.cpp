#include "tests/support/logCapture.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <zucom/zucomPort.h>

namespace
{

void askForSomethingUnknown()
{
    char value[16];
    const LogCapture log;
    ZucomPort port("/dev/null");
    const Lines expected = {"getPortPara:721 :: Getting port parameter", "getPortPara:741 :: Parameter: OPMODE",
                            "getPortPara:811 :: Value: RS232"};
    port.getPortPara("OPMODE", value);
    EXPECT_EQ(expected, LogCapture::take());
    port.getPortPara("NOTHING", value);
}

TEST(LogCaptureTest, keepsLinesInShortFormAndDemandsThatErrorsAreTaken)
{
    EXPECT_NONFATAL_FAILURE(askForSomethingUnknown(),
                            "unexpected error line: getPortPara:809 ERROR :: ZUCOM: unknown parameter: NOTHING");
}

} // namespace
