#include <cerrno>
#include <cstring>
#include <numeric>

#include "tests/port/portTest.h"

namespace
{

class PortTransmit : public PortTest
{
protected:
    const Bytes frame_ = {0x05, 0xff, 0x52, 0x0a, 0x00};
    const std::string trace_ = "transmit:131 :: Transmitting data: 05 ff 52 0a 00 ";
    const std::string notOpen_ = "transmit:149 ERROR :: ZUCOM: port not connnected";
    const std::string null_ = "transmit:131 ERROR :: ZUCOM: pointer is NULL";

    int transmit() { return port_.transmit(frame_.data(), frame_.size()); }

    static Calls sleeps(std::size_t count) { return Calls(count, "nanosleep(1000000 ns)"); }

    void receiveFrame()
    {
        uint8_t buffer[16];
        reader_.write(frame_);
        ASSERT_EQ(5, port_.receive(buffer, sizeof buffer));
        LogCapture::take();
        device_.take();
    }
};

TEST_F(PortTransmit, writesTheBytesUnchangedInOnePiece)
{
    open();
    check(5, {trace_, "transmit:143 :: Sent 5 Bytes"}, {"write(fd, 5)"}, [&] { return transmit(); });
    Bytes all(256);
    std::iota(all.begin(), all.end(), uint8_t{0});
    EXPECT_EQ(256, port_.transmit(all.data(), all.size()));
    EXPECT_EQ(frame_ + all, reader_.read(frame_.size() + all.size()));
}

TEST_F(PortTransmit, writesNoBytesWhenAsked)
{
    open();
    for (const uint8_t* data : {frame_.data(), static_cast<const uint8_t*>(nullptr)})
        check(0, {"transmit:131 :: Transmitting data: ", "transmit:143 :: Sent 0 Bytes"}, {"write(fd, 0)"},
              [&] { return port_.transmit(data, 0); });
}

TEST_F(PortTransmit, answersWithTheCountThatTheDriverTook)
{
    open();
    device_.shorten("write", 1, 2);
    check(2, {trace_, "transmit:143 :: Sent 2 Bytes"}, {"write(fd, 5)"}, [&] { return transmit(); });
    EXPECT_EQ((Bytes{0x05, 0xff}), reader_.read(2));
}

TEST_F(PortTransmit, refusesANullPointer)
{
    const auto transmitNull = [&] { return port_.transmit(nullptr, 3); };
    check(ZUCOM_ERR_NULL, {null_}, {}, transmitNull);
    open();
    check(ZUCOM_ERR_NULL, {null_}, {}, transmitNull);
}

TEST_F(PortTransmit, closesThePortWhenWritingFails)
{
    for (const int error : {EIO, EINTR, EAGAIN, ENOSPC, ENODEV})
    {
        SCOPED_TRACE(strerror(error));
        open();
        device_.fail("write", 1, error);
        check(
            ZUCOM_ERR_TRANSMIT,
            {trace_,
             std::string("transmit:139 ERROR :: ZUCOM: error in transmit process :: System error: ") + strerror(error),
             closeLine()},
            Calls{"write(fd, 5)"} + closeCalls(), [&] { return transmit(); });
        device_.clearRules();
        check(ZUCOM_ERR_NOT_CONNECTED, {trace_, notOpen_}, {}, [&] { return transmit(); });
    }
}

TEST_F(PortTransmit, doesNotTakeDescriptorZeroForAnOpenPort)
{
    check(ZUCOM_ERR_NOT_CONNECTED, {trace_, notOpen_}, {}, [&] { return transmit(); });
    device_.answer("open", 1, 0);
    device_.answer("", 0, 0);
    open();
    check(ZUCOM_ERR_NOT_CONNECTED, {trace_, notOpen_}, {}, [&] { return transmit(); });
}

TEST_F(PortTransmit, keepsTheGapAfterAFrameThatWasReceived)
{
    const struct
    {
        const char* gap; // ms
        int64_t passed;  // us
        std::size_t sleeps;
    } cases[] = {{"5", 0, 5},      {"0", 0, 0},      {"1", 0, 1},        {"999", 0, 999},
                 {"20", 19000, 1}, {"20", 20000, 0}, {"20", 1000000, 0}, {"20", -10000, 0}}; // the clock was set back
    open();
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.gap);
        set("TXDELAYTIME", row.gap);
        receiveFrame();
        device_.advance(row.passed);
        check(5, {trace_, "transmit:143 :: Sent 5 Bytes"}, sleeps(row.sleeps) + Calls{"write(fd, 5)"},
              [&] { return transmit(); });
        device_.advance(1000000);
    }
}

TEST_F(PortTransmit, needsNoGapBeforeTheFirstFrameIsReceived)
{
    open();
    set("TXDELAYTIME", "999");
    EXPECT_EQ(5, transmit());
    EXPECT_EQ(5, transmit());
    EXPECT_EQ((Calls{"write(fd, 5)", "write(fd, 5)"}), device_.take());
}

TEST_F(PortTransmit, countsTheGapFromTheLastFrameNotFromAFailure)
{
    open();
    receiveFrame();
    device_.advance(3000);
    set("TIMEOUT", "0");
    uint8_t buffer[16];
    EXPECT_EQ(ZUCOM_ERR_TIMEOUT, port_.receive(buffer, sizeof buffer));
    LogCapture::take();
    device_.take();
    EXPECT_EQ(5, transmit());
    EXPECT_EQ(sleeps(2) + Calls{"write(fd, 5)"}, device_.take());
}

TEST_F(PortTransmit, countsTheGapFromBytesThatAreNoFrameToo)
{
    open();
    uint8_t buffer[16];
    reader_.write({0x04});
    EXPECT_EQ(-1, port_.receive(buffer, sizeof buffer));
    device_.take();
    EXPECT_EQ(5, transmit());
    EXPECT_EQ(sleeps(5) + Calls{"write(fd, 5)"}, device_.take());
}

TEST_F(PortTransmit, waitsOutTheGapBeforeAnyOtherTest)
{
    open();
    receiveFrame();
    port_.closePort();
    LogCapture::take();
    device_.take();
    check(ZUCOM_ERR_NOT_CONNECTED, {trace_, notOpen_}, sleeps(5), [&] { return transmit(); });
}

TEST_F(PortTransmit, waitsOutTheGapBeforeItRefusesANullPointer)
{
    open();
    receiveFrame();
    check(ZUCOM_ERR_NULL, {null_}, sleeps(5), [&] { return port_.transmit(nullptr, 1); });
}

TEST_F(PortTransmit, sleepsOnForTheRestWhenInterrupted)
{
    open();
    receiveFrame();
    device_.fail("nanosleep", 1, EINTR);
    EXPECT_EQ(5, transmit());
    EXPECT_EQ((Calls{"nanosleep(1000000 ns)", "nanosleep(250000 ns)"}) + sleeps(4) + Calls{"write(fd, 5)"},
              device_.take());
}

TEST_F(PortTransmit, endsOneSleepEarlyWhenSleepingFails)
{
    open();
    receiveFrame();
    device_.fail("nanosleep", 1, EINVAL);
    EXPECT_EQ(5, transmit());
    EXPECT_EQ(sleeps(6) + Calls{"write(fd, 5)"}, device_.take());
}

} // namespace
