#include "tests/support/deviceFaults.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <unistd.h>

#include "tests/support/ptyReader.h"

namespace
{

class DeviceFaultsTest : public testing::Test
{
protected:
    PtyReader reader_;
    DeviceFaults device_;
    int descriptor_ = open(reader_.path(), O_RDWR | O_NOCTTY | O_NONBLOCK);

    ~DeviceFaultsTest() override { close(descriptor_); }
};

TEST_F(DeviceFaultsTest, keepsCallsWithArgumentsInOrder)
{
    termios line{};
    cfsetspeed(&line, B19200);
    line.c_cflag |= CS7 | PARENB | PARODD | CSTOPB;
    line.c_iflag = IGNBRK | INPCK;
    line.c_cc[VMIN] = 1;
    const int rts = TIOCM_RTS;
    fcntl(descriptor_, F_SETFL, 0);
    tcsetattr(descriptor_, TCSANOW, &line);
    line.c_lflag = ECHO;
    tcsetattr(descriptor_, TCSADRAIN, &line);
    ioctl(descriptor_, TIOCMBIS, &rts);
    EXPECT_EQ(3, write(descriptor_, "abc", 3));
    close(-1);
    const std::vector<std::string> calls = {std::string("open(") + reader_.path() + ", O_RDWR|O_NOCTTY|O_NONBLOCK)",
                                            "fcntl(fd, F_SETFL, 0)",
                                            "tcsetattr(fd, TCSANOW, 19200 7O2 raw)",
                                            "tcsetattr(fd, later, 19200 7O2 i0x11 o0x0 c0x0 l0x8 min1 time0)",
                                            "ioctl(fd, TIOCMBIS, 0x4)",
                                            "write(fd, 3)",
                                            "close(-1)"};
    EXPECT_EQ(calls, device_.take());
}

TEST_F(DeviceFaultsTest, failsAnswersAndShortensTheCallThatIsNamed)
{
    device_.fail("write", 2, ENOSPC);
    device_.answer("read", 1, 0);
    device_.shorten("write(fd, 4", 1, 1);
    char byte = 0;
    EXPECT_EQ(2, write(descriptor_, "ab", 2));
    EXPECT_EQ(-1, write(descriptor_, "ab", 2));
    EXPECT_EQ(ENOSPC, errno);
    EXPECT_EQ(1, write(descriptor_, "cdef", 4));
    EXPECT_EQ(0, read(descriptor_, &byte, 1));
    EXPECT_EQ((Bytes{'a', 'b', 'c'}), reader_.read(3));
}

TEST_F(DeviceFaultsTest, runsActionsAsideAndLetsVirtualTimePass)
{
    device_.before("select", 2, [&] { reader_.write({7}); });
    fd_set set;
    FD_ZERO(&set);
    FD_SET(descriptor_, &set);
    timeval hour{3600, 0};
    EXPECT_EQ(0, select(descriptor_ + 1, &set, nullptr, nullptr, &hour));
    EXPECT_FALSE(FD_ISSET(descriptor_, &set));
    EXPECT_EQ(3600000000, device_.elapsed());
    FD_SET(descriptor_, &set);
    hour = {3600, 0};
    EXPECT_EQ(1, select(descriptor_ + 1, &set, nullptr, nullptr, &hour));
    EXPECT_TRUE(FD_ISSET(descriptor_, &set));
    EXPECT_EQ(3600000000, device_.elapsed());
}

TEST_F(DeviceFaultsTest, behavesAsASerialDriver)
{
    serial_rs485 given{};
    given.flags = SER_RS485_ENABLED;
    serial_rs485 kept{};
    int lines = 0;
    const int dtr = TIOCM_DTR;
    EXPECT_EQ(0, ioctl(descriptor_, TIOCSRS485, &given));
    EXPECT_EQ(0, ioctl(descriptor_, TIOCGRS485, &kept));
    EXPECT_EQ(given.flags, kept.flags);
    EXPECT_EQ(0, ioctl(descriptor_, TIOCMBIS, &dtr));
    EXPECT_EQ(0, ioctl(descriptor_, TIOCMGET, &lines));
    EXPECT_EQ(dtr, lines);
    termios line{};
    EXPECT_EQ(0, tcgetattr(descriptor_, &line));
    EXPECT_EQ(0, tcsetattr(descriptor_, TCSANOW, &line)) << "settings that change nothing";
    EXPECT_EQ(-1, ioctl(-1, TIOCMGET, &lines));
    EXPECT_EQ(EBADF, errno);
}

} // namespace
