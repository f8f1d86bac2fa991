#include <zucom/zucomPort.h>

#include <cstring>
#include <set>
#include <thread>
#include <vector>

#include "tests/port/portTest.h"

namespace
{

const int firstHandle = ZucomPort::nextPortHandle();

TEST(PortHandle, countsFromOneAndOnWithEveryPortObject)
{
    const LogCapture log;
    EXPECT_EQ(1, firstHandle);
    const int before = ZucomPort::nextPortHandle();
    const ZucomPort first("/dev/null");
    const ZucomPort second(nullptr);
    EXPECT_EQ(before + 3, ZucomPort::nextPortHandle());
}

TEST(PortHandle, isDifferentInEveryThread)
{
    constexpr std::size_t threadCount = 8;
    constexpr std::size_t handleCount = 1000;
    std::vector<std::vector<int>> handles(threadCount);
    std::vector<std::thread> threads;
    for (std::vector<int>& own : handles)
        threads.emplace_back(
            [&own]
            {
                for (std::size_t i = 0; i < handleCount; ++i)
                    own.push_back(ZucomPort::nextPortHandle());
            });
    for (std::thread& thread : threads)
        thread.join();
    std::set<int> all;
    for (const std::vector<int>& own : handles)
        all.insert(own.begin(), own.end());
    EXPECT_EQ(threadCount * handleCount, all.size());
}

TEST_F(PortTest, startsWithTheDefaultsAndTouchesNoDevice)
{
    const char* const defaults[][2] = {
        {"DEVICEPATH", path_.c_str()}, {"OPMODE", "RS232"},  {"BUSADDRESS", "255"}, {"BAUD", "9600"},
        {"TIMEOUT", "1000"},           {"TXDELAYTIME", "5"}, {"ERRCODE", "0"}};
    for (const auto& [key, value] : defaults)
        EXPECT_EQ(value, get(key)) << key;
    EXPECT_EQ(Calls{}, device_.take());
}

TEST(PortObject, takesANullPathAsEmpty)
{
    const LogCapture log;
    ZucomPort port(nullptr);
    char value[8] = "unset";
    EXPECT_EQ(0, port.getPortPara("DEVICEPATH", value));
    EXPECT_STREQ("", value);
}

TEST(StrToUp, convertsTheTextInPlace)
{
    const char* const cases[][2] = {
        {"", ""}, {"baud", "BAUD"}, {"TxDelay_9!", "TXDELAY_9!"}, {"\xe4\xff z", "\xe4\xff Z"}};
    for (const auto& [given, expected] : cases)
    {
        char text[16];
        std::strcpy(text, given);
        strtoup(text);
        EXPECT_STREQ(expected, text);
    }
}

} // namespace
