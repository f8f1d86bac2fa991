#include <cerrno>
#include <cstdint>

#include <sys/resource.h>

#include "tests/port/portTest.h"

namespace
{

const Bytes answer = {0x05, 0xff, 0x52, 0x00, 0x0a};
const Bytes fromSeven = {0x05, 0x07, 0x52, 0x00, 0x00};
const Bytes advanced = {0x02, 0x00, 0x08, 0x07, 0x52, 0x00, 0x00, 0x00};
const Bytes enhanced = {0x03, 0x00, 0x0a, 0x00, 0x00, 0x07, 0x52, 0x00, 0x00, 0x00};

Bytes part(const Bytes& bytes, std::ptrdiff_t from, std::ptrdiff_t to)
{
    return {bytes.begin() + from, bytes.begin() + to};
}

class PortReceive : public PortTest
{
protected:
    const Lines begin_ = {"receive:163 :: Receiving on device: " + path_, "receive:185 :: Timeout: 1000"};
    const std::string timeout_ = "receive:211 ERROR :: ZUCOM: receive timeout";
    const std::string length_ = "receive:211 ERROR :: ZUCOM: Invalid protocol length";
    const std::string notOpen_ = "receive:242 ERROR :: ZUCOM: port not connnected";
    const std::string select_ = "select({fd}, 1000000 us)";
    const std::string read_ = "read(fd, 64)";
    uint8_t buffer_[64] = {};

    int receive() { return port_.receive(buffer_, sizeof buffer_); }

    /** The reader writes one piece each time the port waits. */
    void answerWith(std::vector<Bytes> pieces)
    {
        reader_.answers(std::move(pieces));
        device_.clearRules();
        device_.before("select", 0,
                       [this]
                       {
                           device_.advance(1000);
                           reader_.writeNext();
                       });
    }

    static std::string received(const std::string& dump, int length)
    {
        return "receive:246 :: Received protocol: " + dump + " Length: " + std::to_string(length);
    }

    static Calls repeat(const Calls& calls, std::size_t count)
    {
        Calls all;
        for (; count > 0; --count)
            all.insert(all.end(), calls.begin(), calls.end());
        return all;
    }
};

TEST_F(PortReceive, returnsLengthOrCode)
{
    const std::string answerDump = "05 ff 52 00 0a ";
    std::string sixtyFour;
    for (int i = 0; i < 64; ++i)
        sixtyFour += "40 ";
    const struct
    {
        const char* name;
        const char* busAddress;
        std::vector<Bytes> pieces; // what the reader writes, one piece for each wait
        int result;
        std::string line; // the last one
    } cases[] = {
        {"whole frame", "255", {answer}, 5, received(answerDump, 5)},
        {"two pieces", "255", {part(answer, 0, 2), part(answer, 2, 5)}, 5, received(answerDump, 5)},
        {"byte by byte", "255", {{0x05}, {0xff}, {0x52}, {0x00}, {0x0a}}, 5, received(answerDump, 5)},
        {"two frames at once", "255", {answer + fromSeven}, 5, received(answerDump, 5)},
        {"advanced", "7", {advanced}, 8, received("02 00 08 07 52 00 00 00 ", 8)},
        {"advanced, length in pieces",
         "7",
         {{0x02}, {0x00}, part(advanced, 2, 8)},
         8,
         received("02 00 08 07 52 00 00 00 ", 8)},
        {"enhanced", "7", {enhanced}, 10, received("03 00 0a 00 00 07 52 00 00 00 ", 10)},
        {"own address", "7", {fromSeven}, 5, received("05 07 52 00 00 ", 5)},
        {"broadcast answer", "3", {answer}, 5, received(answerDump, 5)},
        {"address 0 is an address", "0", {fromSeven}, ZUCOM_ERR_TIMEOUT, timeout_},
        {"any address wanted", "255", {fromSeven}, 5, received("05 07 52 00 00 ", 5)},
        {"other address", "3", {fromSeven}, ZUCOM_ERR_TIMEOUT, timeout_},
        {"other address, advanced", "3", {advanced}, ZUCOM_ERR_TIMEOUT, timeout_},
        {"other address, enhanced", "3", {enhanced}, ZUCOM_ERR_TIMEOUT, timeout_},
        {"other address, then own", "3", {fromSeven, answer}, 5, received(answerDump, 5)},
        {"other address and half a frame", "3", {fromSeven + part(answer, 0, 3)}, ZUCOM_ERR_PROTOCOL_LENGTH, length_},
        {"a frame behind a dropped one", "3", {fromSeven + answer}, ZUCOM_ERR_PROTOCOL_LENGTH, length_},
        {"half frame", "255", {part(answer, 0, 3)}, ZUCOM_ERR_PROTOCOL_LENGTH, length_},
        {"length 0", "255", {{0x02, 0x00, 0x00, 0x01}}, ZUCOM_ERR_PROTOCOL_LENGTH, length_},
        {"silence", "255", {}, ZUCOM_ERR_TIMEOUT, timeout_},
        {"first byte 0", "255", {{0x00, 0x01}}, -1, received("", -1)},
        {"first byte 1", "255", {{0x01}}, -1, received("", -1)},
        {"first byte 4", "255", {{0x04}}, -1, received("", -1)},
        {"longer than the buffer", "255", {Bytes(64, 65), Bytes(1, 65)}, -1, received("", -1)},
        {"as long as the buffer", "255", {Bytes(64, 64)}, 64, received(sixtyFour, 64)},
    };
    open();
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.name);
        set("BUSADDRESS", row.busAddress);
        device_.advance(60000000); // far from the frame of the row before
        answerWith(row.pieces);
        Calls calls = repeat({select_, read_}, row.pieces.size());
        if (row.result < -1)
            calls.push_back(select_);
        check(row.result, begin_ + Lines{row.line}, calls, [&] { return receive(); });
        if (row.result > 0)
        {
            EXPECT_EQ(row.line,
                      received(ZucomLogger::printProt(buffer_, static_cast<std::size_t>(row.result)), row.result));
        }
    }
}

TEST_F(PortReceive, refusesWhatItCannotFill)
{
    const std::string null = "receive:168 ERROR :: ZUCOM: pointer is NULL";
    const std::string range = "receive:175 ERROR :: ZUCOM: parameter out of range";
    const auto receiving = [&](uint8_t* buffer, std::size_t size)
    { return [this, buffer, size] { return port_.receive(buffer, size); }; };
    for (const bool opened : {false, true})
    {
        if (opened)
            open();
        check(ZUCOM_ERR_NULL, {begin_[0], null}, {}, receiving(nullptr, 5));
        check(ZUCOM_ERR_OUT_OF_RANGE, {begin_[0], range}, {}, receiving(buffer_, 0));
        check(ZUCOM_ERR_OUT_OF_RANGE, {begin_[0], null, range}, {}, receiving(nullptr, 0));
    }
}

TEST_F(PortReceive, answersASizeThatNoMemoryHoldsWithACode)
{
    open();
    for (const std::size_t size : {SIZE_MAX, SIZE_MAX / 2, SIZE_MAX / 2 + 1, SIZE_MAX / 4})
    {
        answerWith({answer});
        check(ZUCOM_ERR_MEMORY, begin_, {select_}, [&] { return port_.receive(buffer_, size); });
    }
    device_.clearRules();
    answerWith({});
    check(5, begin_ + Lines{received("05 ff 52 00 0a ", 5)}, {select_, read_}, [&] { return receive(); });
}

TEST_F(PortReceive, worksWithBuffersSmallerThanAHeader)
{
    open();
    for (std::size_t size = 1; size <= 6; ++size)
        for (const Bytes& frame : {answer, advanced, enhanced})
        {
            SCOPED_TRACE(size);
            answerWith({frame});
            const int expected = size >= frame.size() ? static_cast<int>(frame.size()) : -1;
            Bytes buffer(size);
            EXPECT_EQ(expected, port_.receive(buffer.data(), size)) << int{frame[0]};
            EXPECT_EQ(0, port_.doPortCmd("FLUSHINQ", const_cast<char*>("")));
            LogCapture::take();
            device_.advance(60000000);
        }
}

TEST_F(PortReceive, takesTheLongestFrame)
{
    Bytes frame(65535, 0x11);
    frame[0] = 0x02;
    frame[1] = frame[2] = frame[3] = 0xff;
    std::vector<Bytes> pieces;
    for (std::size_t at = 0; at < frame.size(); at += 4000)
        pieces.push_back(part(frame, static_cast<std::ptrdiff_t>(at),
                              static_cast<std::ptrdiff_t>(std::min(at + 4000, frame.size()))));
    open();
    answerWith(pieces);
    Bytes buffer(65535);
    EXPECT_EQ(65535, port_.receive(buffer.data(), buffer.size()));
    EXPECT_EQ(frame, buffer);
}

TEST_F(PortReceive, forgetsWhatFollowedTheFrameBefore)
{
    open();
    answerWith({answer + fromSeven});
    EXPECT_EQ(5, receive());
    EXPECT_EQ(ZUCOM_ERR_TIMEOUT, receive());
    LogCapture::take();
}

TEST_F(PortReceive, waitsAsLongAsTheTimeoutSays)
{
    open();
    for (const auto& [value, usec] : std::vector<std::pair<std::string, std::string>>{
             {"0", "0"}, {"1", "1000"}, {"1500", "1500000"}, {"99999", "99999000"}})
    {
        set("TIMEOUT", value.c_str());
        const int64_t before = device_.elapsed();
        check(ZUCOM_ERR_TIMEOUT, {begin_[0], "receive:185 :: Timeout: " + value, timeout_},
              {"select({fd}, " + usec + " us)"}, [&] { return receive(); });
        EXPECT_EQ(usec, std::to_string(device_.elapsed() - before));
    }
}

TEST_F(PortReceive, needsAnOpenPort)
{
    check(ZUCOM_ERR_NOT_CONNECTED, begin_ + Lines{notOpen_}, {}, [&] { return receive(); });
}

TEST_F(PortReceive, showsTheStoredPathInItsTrace)
{
    set("DEVICEPATH", "elsewhere");
    check(ZUCOM_ERR_NOT_CONNECTED, {"receive:163 :: Receiving on device: elsewhere", begin_[1], notOpen_}, {},
          [&] { return receive(); });
}

TEST_F(PortReceive, failsWhenWaitingFails)
{
    open();
    for (const int error : {EINTR, EBADF, ENOMEM})
    {
        device_.fail("select", 1, error);
        check(ZUCOM_ERR_READ, begin_ + Lines{"receive:198 ERROR :: ZUCOM: error in read process"}, {select_},
              [&] { return receive(); });
        device_.clearRules();
    }
    answerWith({answer});
    check(5, begin_ + Lines{received("05 ff 52 00 0a ", 5)}, {select_, read_}, [&] { return receive(); });
}

TEST_F(PortReceive, closesThePortWhenTheDeviceWentAway)
{
    const auto failing = [&](int code, const char* text)
    {
        reader_.write({0x05});
        check(code, begin_ + Lines{std::string("receive:225 ERROR :: ") + text, closeLine()},
              Calls{select_, read_} + closeCalls(), [&] { return receive(); });
        device_.clearRules();
        check(ZUCOM_ERR_NOT_CONNECTED, begin_ + Lines{notOpen_}, {}, [&] { return receive(); });
    };
    open();
    device_.answer("read", 1, 0);
    failing(ZUCOM_ERR_NOT_CONNECTED, "ZUCOM: port not connnected");
    for (const int error : {EIO, ENXIO, EBADF})
    {
        open();
        device_.fail("read", 1, error);
        failing(ZUCOM_ERR_READ, "ZUCOM: error in read process");
    }
}

TEST_F(PortReceive, closesThePortWhenTheReaderHangsUp)
{
    open();
    device_.before("select", 1, [&] { reader_.hangUp(); });
    const int result = receive(); // the kernel reports the end of file or an error
    EXPECT_TRUE(result == ZUCOM_ERR_NOT_CONNECTED || result == ZUCOM_ERR_READ) << result;
    EXPECT_EQ(-1, device_.descriptor());
    LogCapture::take();
}

TEST_F(PortReceive, waitsOnAgainstTheSameDeadlineWhenReadingGivesNothing)
{
    open();
    for (const int error : {EINTR, EAGAIN})
    {
        reader_.write(part(answer, 0, 2));
        device_.before("select", 1, [&] { device_.advance(300000); });
        device_.fail("read", 1, error);
        device_.before("select", 3, [&] { reader_.write(part(answer, 2, 5)); });
        check(5, begin_ + Lines{received("05 ff 52 00 0a ", 5)},
              {select_, read_, "select({fd}, 700000 us)", read_, select_, read_}, [&] { return receive(); });
        device_.clearRules();
        device_.advance(60000000);
    }
}

TEST_F(PortReceive, endsInTimeOnADeviceThatIsReadableForEver)
{
    open();
    for (const Bytes& early : {Bytes{}, part(answer, 0, 2)})
    {
        device_.clearRules();
        EXPECT_EQ(0, port_.doPortCmd("FLUSHINQ", const_cast<char*>("")));
        reader_.write(early.empty() ? answer : early);
        device_.before("select", 0, [&] { device_.advance(300000); });
        device_.before("select", 2, [&] { reader_.write(answer); });
        for (int read = early.empty() ? 1 : 2; read < 20; ++read)
            device_.fail("read", read, EAGAIN);
        LogCapture::take();
        const int64_t before = device_.elapsed();
        EXPECT_EQ(early.empty() ? ZUCOM_ERR_TIMEOUT : ZUCOM_ERR_PROTOCOL_LENGTH, receive());
        EXPECT_EQ(LogCapture::visible(begin_ + Lines{early.empty() ? timeout_ : length_}), LogCapture::take());
        const int64_t sinceLastByte = device_.elapsed() - before - (early.empty() ? 0 : 300000);
        EXPECT_LE(1000000, sinceLastByte);
        EXPECT_GE(1300000, sinceLastByte);
    }
}

TEST_F(PortReceive, asksForTheCallersSizeWhenReading)
{
    open();
    answerWith({part(answer, 0, 2), part(answer, 2, 5)});
    Bytes buffer(5);
    EXPECT_EQ(5, port_.receive(buffer.data(), buffer.size()));
    EXPECT_EQ((Calls{select_, "read(fd, 5)", select_, "read(fd, 5)"}), device_.take());
}

TEST_F(PortReceive, worksWithDescriptorsThatAnOrdinarySetDoesNotHold)
{
    rlimit limit{};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &limit));
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &limit));
    for (const int descriptor : {1023, 1024, 1025, 1087, 1088, 2100})
    {
        SCOPED_TRACE(descriptor);
        device_.lowestDescriptor = descriptor;
        open();
        ASSERT_EQ(descriptor, device_.descriptor());
        answerWith({part(answer, 0, 2), part(answer, 2, 5)});
        check(5, begin_ + Lines{received("05 ff 52 00 0a ", 5)}, {select_, read_, select_, read_},
              [&] { return receive(); });
        check(ZUCOM_ERR_TIMEOUT, begin_ + Lines{timeout_}, {select_}, [&] { return receive(); });
        EXPECT_EQ(0, port_.closePort());
        LogCapture::take();
    }
}

} // namespace
