#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

#include "tests/support/logCapture.h"
#include "tests/support/ptyReader.h"

namespace
{

TEST(HandleWrap, overwritesNoPortThatIsStillRegistered)
{
    const char* const preloaded = std::getenv("LD_PRELOAD");
    if (preloaded && std::strstr(preloaded, "vgpreload"))
        GTEST_SKIP() << "2^28 handles take hours under valgrind";
    const LogCapture log;
    const PtyReader reader;
    const PtyReader other;
    const int handle = ZUCOM_OpenPort(reader.path());
    ASSERT_GT(handle, 0);
    int last = 0;
    for (int i = 0; i < (1 << 28) - handle; ++i)
        last = ZucomPort::nextPortHandle();
    EXPECT_EQ(0, last) << "the handle after 268435455";
    for (int i = 1; i < handle; ++i)
        ZucomPort::nextPortHandle();
    EXPECT_EQ(ZUCOM_ERR_PORT_OBJECT, ZUCOM_OpenPort(other.path())) << "its handle is in use";
    EXPECT_EQ(handle, ZUCOM_GetPortHnd(reader.path()));
    EXPECT_EQ(handle + 1, ZucomPort::nextPortHandle());
    EXPECT_EQ(1, ZUCOM_Transmit(handle, reinterpret_cast<const uint8_t*>("x"), 1));
    EXPECT_EQ(0, ZUCOM_ClosePort(handle));
}

} // namespace
