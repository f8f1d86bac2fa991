#include <atomic>
#include <cstdint>
#include <filesystem>
#include <thread>
#include <vector>

#include <malloc.h>

#include "tests/support/logCapture.h"
#include "tests/support/ptyReader.h"
#include <gtest/gtest.h>
#include <zucom/zucom.h>

namespace
{

/** Exchanges on one port, the reader's part included. @return How many went well. */
int exchange(PtyReader& reader, int handle, int count)
{
    const uint8_t request[] = {5, 255, 0x52, 0, 0};
    uint8_t buffer[16];
    int good = 0;
    for (int i = 0; i < count; ++i)
    {
        const Bytes answer = {6, 255, static_cast<uint8_t>(i), static_cast<uint8_t>(handle), 0, 0};
        if (ZUCOM_Transmit(handle, request, sizeof request) != 5)
            continue;
        reader.read(sizeof request);
        reader.write(answer);
        if (ZUCOM_Receive(handle, buffer, sizeof buffer) == 6 && answer == Bytes(buffer, buffer + 6))
            ++good;
    }
    return good;
}

TEST(Threads, useTheirOwnPortsWhileOthersOpenListAndClose)
{
    constexpr int exchanges = 100;
    const LogCapture log;
    std::atomic<int> running{8};
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = running; i > 0; --i)
        threads.emplace_back(
            [&]
            {
                PtyReader reader;
                const int handle = ZUCOM_OpenPort(reader.path());
                ZUCOM_SetPortPara(handle, "TXDELAYTIME", "0");
                ZUCOM_SetPortPara(handle, "TIMEOUT", "60000");
                good += exchange(reader, handle, exchanges);
                ZUCOM_ClosePort(handle);
                --running;
            });
    int rounds = 0;
    PtyReader reader;
    do
    {
        reader.release();
        const int handle = ZUCOM_OpenPort(reader.path());
        EXPECT_GT(handle, 0);
        EXPECT_EQ(handle, ZUCOM_GetPortHnd(reader.path()));
        ZUCOM_OpenPort("/nowhere/tty");
        ZUCOM_GetPortList(ZUCOM_GetPortList(0));
        EXPECT_EQ(0, ZUCOM_ClosePort(handle));
        ++rounds;
    } while (running > 0);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(8 * exchanges, good);
    EXPECT_GT(rounds, 0);
    EXPECT_EQ(ZUCOM_ERR_PORT_LIST_EMPTY, ZUCOM_GetPortList(0));
    LogCapture::take();
}

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

TEST(Leaks, areNoneAfterTenThousandPorts)
{
    const LogCapture log;
    PtyReader reader;
    const auto openAndClose = [&](int times)
    {
        for (int i = 0; i < times; ++i)
        {
            reader.release();
            const int handle = ZUCOM_OpenPort(reader.path());
            ASSERT_GT(handle, 0);
            ASSERT_EQ(ZUCOM_ERR_PORT_OBJECT, ZUCOM_OpenPort("/dev/null"));
            ASSERT_EQ(0, ZUCOM_ClosePort(handle));
            LogCapture::take();
        }
    };
    openAndClose(10);
    const std::ptrdiff_t descriptors = openDescriptors();
    const std::size_t bytes = mallinfo2().uordblks;
    openAndClose(10000);
    EXPECT_EQ(descriptors, openDescriptors());
    EXPECT_EQ(bytes, mallinfo2().uordblks);
}

} // namespace
