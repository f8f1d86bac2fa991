/**
 * @file
 * A port on a scripted reader, with its log lines and device calls: what the tests of the port operations start from.
 */
#ifndef TESTS_PORT_PORT_TEST_H
#define TESTS_PORT_PORT_TEST_H

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

#include "tests/support/deviceFaults.h"
#include "tests/support/logCapture.h"
#include "tests/support/ptyReader.h"

using Calls = std::vector<std::string>;

class PortTest : public testing::Test
{
protected:
    LogCapture log_;
    PtyReader reader_;
    const std::string path_ = reader_.path();
    const std::string lineBefore_ = DeviceFaults::lineText(reader_.line());
    DeviceFaults device_;
    ZucomPort port_{reader_.path()};

    PortTest() { device_.rs485.flags = SER_RS485_ENABLED; }

    ~PortTest() override
    {
        device_.clearRules();
        Lines lines = LogCapture::take();
        if (device_.descriptor() >= 0)
            port_.closePort();
        LogCapture::putBack(std::move(lines));
    }

    void open()
    {
        ASSERT_EQ(0, port_.openPort());
        LogCapture::take();
        device_.take();
    }

    void set(const char* key, const char* value)
    {
        ASSERT_EQ(0, port_.setPortPara(key, value)) << key << ' ' << value;
        LogCapture::take();
        device_.take();
    }

    /** @return A parameter as text; leaves no trace in the log. */
    std::string get(const char* key)
    {
        char value[256] = "";
        Lines before = LogCapture::take();
        EXPECT_EQ(0, port_.getPortPara(key, value)) << key;
        LogCapture::putBack(std::move(before));
        return value;
    }

    /** Runs an operation and checks its result, the port's last error, its log lines and its device calls. */
    template <class Operation>
    void check(int result, const Lines& lines, const Calls& calls, Operation operation)
    {
        const std::string before = get("ERRCODE");
        EXPECT_EQ(result, operation());
        EXPECT_EQ(LogCapture::visible(lines), LogCapture::take());
        EXPECT_EQ(calls, device_.take());
        EXPECT_EQ(result < -1 ? std::to_string(result) : before, get("ERRCODE"));
    }

    /** What closing the open port writes to the log and asks of the device. */
    std::string closeLine() const { return "closePort:106 :: Closing device: " + path_; }
    Calls closeCalls() const { return {restoreLine(), "ioctl(fd, TIOCSRS485, flags 1 delays 0 0)", "close(fd)"}; }
    std::string restoreLine() const { return "tcsetattr(fd, TCSANOW, " + lineBefore_ + ")"; }
};

#endif
