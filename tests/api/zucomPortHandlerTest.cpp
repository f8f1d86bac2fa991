#include <zucom/zucomPortHandler.h>

#include <zucom/zucomPort.h>

#include <unistd.h>

#include "tests/api/apiTest.h"

namespace
{

using Registry = ApiTest;

TEST_F(Registry, createsFindsAndDeletesPortObjectsWithoutTheDevice)
{
    ZucomPortHandler* const registry = ZucomPortHandler::instance();
    EXPECT_EQ(registry, ZucomPortHandler::instance());
    ZUCOM_DetectPort(nullptr);
    const int before = ZucomPort::nextPortHandle();
    ZucomPort* const port = registry->addNewPort(reader_.path());
    ASSERT_NE(nullptr, port);
    EXPECT_EQ(port, registry->getPort(before + 1));
    EXPECT_EQ(nullptr, registry->getPort(before));
    EXPECT_EQ(before + 1, registry->getPortHnd(reader_.path()));
    EXPECT_EQ(before + 1, registry->getPortList(0));
    EXPECT_EQ(0, lastError(0)) << "a step through the list clears it";
    ZUCOM_DetectPort(nullptr);
    EXPECT_EQ(0, registry->deletePort(before + 1));
    EXPECT_EQ(ZUCOM_ERR_HANDLE_ZERO, registry->deletePort(before + 1));
    EXPECT_EQ(nullptr, registry->getPort(before + 1));
    EXPECT_EQ(ZUCOM_ERR_UNSUPPORTED, lastError(0)) << "neither finding nor deleting writes it";
    EXPECT_EQ(std::vector<std::string>{}, device_.take());
}

TEST_F(Registry, leavesTheDeviceOpenWhenItDeletesAnOpenPort)
{
    const int handle = open();
    device_.take();
    EXPECT_EQ(0, ZucomPortHandler::instance()->deletePort(handle));
    EXPECT_EQ(std::vector<std::string>{}, device_.take());
    ASSERT_GE(device_.descriptor(), 0);
    close(device_.descriptor());
}

TEST_F(Registry, createsNothingForANullPath)
{
    const int before = ZucomPort::nextPortHandle();
    EXPECT_EQ(nullptr, ZucomPortHandler::instance()->addNewPort(nullptr));
    EXPECT_EQ(before + 1, ZucomPort::nextPortHandle());
}

TEST_F(Registry, writesTheVersion)
{
    ZucomPortHandler::instance()->setVersion();
    EXPECT_STREQ("04.00.00", ZUCOM_GetDLLVersion());
}

} // namespace
