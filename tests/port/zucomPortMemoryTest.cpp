// What receiving costs in memory: nothing after the first exchange, and never more than a bounded amount.

#include <algorithm>
#include <cstdlib>
#include <new>

#include "tests/support/deviceFaults.h"
#include "tests/support/logCapture.h"
#include "tests/support/ptyReader.h"
#include <gtest/gtest.h>
#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

namespace
{

thread_local bool counting = false;
thread_local int allocations = 0;
thread_local std::size_t largest = 0; // request to the C functions, which the receive queue uses

void note(std::size_t size)
{
    if (!counting)
        return;
    ++allocations;
    largest = std::max(largest, size);
}

} // namespace

// The linker leads the calls of the library's objects here.
extern "C"
{
    void* __real_malloc(std::size_t size);
    void* __real_calloc(std::size_t count, std::size_t size);
    void* __real_realloc(void* memory, std::size_t size);
    void* __wrap_malloc(std::size_t size);
    void* __wrap_calloc(std::size_t count, std::size_t size);
    void* __wrap_realloc(void* memory, std::size_t size);

    void* __wrap_malloc(std::size_t size)
    {
        note(size);
        return __real_malloc(size);
    }
    void* __wrap_calloc(std::size_t count, std::size_t size)
    {
        note(count * size);
        return __real_calloc(count, size);
    }
    void* __wrap_realloc(void* memory, std::size_t size)
    {
        note(size);
        return __real_realloc(memory, size);
    }
}

// Not inlined, so that a memory checker that replaces them replaces all of them.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    allocations += counting;
    if (void* const memory = __real_malloc(size))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace
{

const bool withoutLogLines = setenv("ZUCOM_TEST_LOG", "off", 1) == 0;

const Bytes answer = {5, 255, 0x52, 0, 0};
const Bytes foreign = {5, 7, 0x52, 0, 0};

TEST(Memory, isNotAskedForAfterTheFirstExchange)
{
    ASSERT_TRUE(withoutLogLines);
    const LogCapture log;
    PtyReader reader;
    ZucomPort port(reader.path());
    ASSERT_EQ(0, port.openPort());
    ASSERT_EQ(0, port.setPortPara("TXDELAYTIME", "0"));
    uint8_t buffer[300];
    for (int exchange = 0; exchange < 20; ++exchange)
    {
        reader.write(answer);
        counting = exchange > 0;
        const int sent = port.transmit(answer.data(), answer.size());
        const int received = port.receive(buffer, sizeof buffer);
        counting = false;
        EXPECT_EQ(5, sent);
        EXPECT_EQ(5, received);
    }
    EXPECT_EQ(0, allocations);
    port.closePort();
    LogCapture::take();
}

TEST(Memory, staysBoundedWhileAReaderFloodsThePort)
{
    Bytes zeroLengths;
    Bytes foreignFrames;
    while (zeroLengths.size() < 3000)
        zeroLengths = zeroLengths + Bytes{2, 0, 0, 0};
    while (foreignFrames.size() < 3000)
        foreignFrames = foreignFrames + foreign;
    const struct
    {
        const char* name;
        Bytes piece;
        Bytes last;
        int result;
    } cases[] = {{"headers of length 0", zeroLengths, {}, ZUCOM_ERR_PROTOCOL_LENGTH},
                 {"frames for another address, many at once", foreignFrames, {}, ZUCOM_ERR_PROTOCOL_LENGTH},
                 {"frames for another address, one by one", foreign, answer, 5}};
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.name);
        const LogCapture log;
        PtyReader reader;
        DeviceFaults device;
        ZucomPort port(reader.path());
        ASSERT_EQ(0, port.openPort());
        ASSERT_EQ(0, port.setPortPara("BUSADDRESS", "3"));
        int pieces = 0;
        device.before("select", 0,
                      [&]
                      {
                          if (++pieces <= 400)
                              reader.write(row.piece);
                          else if (pieces == 401 && !row.last.empty())
                              reader.write(row.last);
                      });
        uint8_t buffer[4096];
        largest = 0;
        counting = true;
        const int result = port.receive(buffer, sizeof buffer);
        counting = false;
        EXPECT_EQ(row.result, result);
        EXPECT_EQ(401, pieces) << "it reads on while bytes come";
        EXPECT_GE(4u * 65536, largest);
        port.closePort();
        LogCapture::take();
    }
}

} // namespace
