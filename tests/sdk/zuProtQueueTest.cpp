// The receive queue, against a table and against a plain model of its rules.

#include <zucom/zuProtQueue.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <vector>

#include "tests/sdk/queueModel.h"

#include <gtest/gtest.h>

namespace queueModel
{
static std::ostream& operator<<(std::ostream& out, const Popped& popped)
{
    return out << popped.result << testing::PrintToString(popped.frame);
}
} // namespace queueModel

namespace
{
using Bytes = queueModel::Bytes;
using queueModel::Model;
using queueModel::Popped;

void add(ZuProtQueue& queue, const Bytes& bytes)
{
    std::copy(bytes.begin(), bytes.end(), queue.next(bytes.size()));
    queue.addSize(bytes.size());
}

Popped pop(ZuProtQueue& queue, std::size_t capacity)
{
    Bytes buffer(capacity + 1, 0xEE);
    const int64_t result = queue.popProtocol(buffer.data(), capacity);
    EXPECT_EQ(0xEE, buffer.back()) << "written behind the buffer";
    return {result, result > 0 ? Bytes(buffer.begin(), buffer.begin() + result) : Bytes{}};
}

const Bytes standard7 = {0x06, 7, 0x52, 0x00, 0xAA, 0xBB};
const Bytes broadcast = {0x05, 0xFF, 0x52, 0x00, 0x00};
const Bytes advanced9 = {0x02, 0x00, 0x08, 9, 0x52, 0x00, 0x00, 0x00};
const Bytes enhanced9 = {0x03, 0x00, 0x0A, 0xFF, 0xFF, 9, 0x52, 0x00, 0x00, 0x00};

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(Queue, answersByKindAddressAndRoom)
{
    struct Case
    {
        const char* name;
        Bytes bytes;
        uint8_t filter;
        std::size_t capacity;
        std::vector<Popped> answers; // of the calls one after the other
    };
    const Case cases[] = {
        {"empty", {}, 255, 64, {{0, {}}}},
        {"whole", broadcast, 255, 64, {{5, broadcast}, {0, {}}}},
        {"part", {0x05, 0xFF, 0x52}, 255, 64, {{0, {}}, {0, {}}}},
        {"own address", standard7, 7, 64, {{6, standard7}}},
        {"any address", standard7, 255, 64, {{6, standard7}}},
        {"other address is dropped", standard7 + broadcast, 3, 64, {{0, {}}, {5, broadcast}}},
        {"broadcast answer", broadcast, 3, 64, {{5, broadcast}}},
        {"advanced", advanced9, 9, 64, {{8, advanced9}}},
        {"advanced for another", advanced9 + broadcast, 8, 64, {{0, {}}, {5, broadcast}}},
        {"enhanced", enhanced9, 9, 64, {{10, enhanced9}}},
        {"enhanced for another", enhanced9 + broadcast, 8, 64, {{0, {}}, {5, broadcast}}},
        {"no frame 0", Bytes{0} + broadcast, 255, 64, {{-1, {}}, {-1, {}}}},
        {"no frame 1", Bytes{1} + broadcast, 255, 64, {{-1, {}}, {-1, {}}}},
        {"no frame 4", Bytes{4} + broadcast, 255, 64, {{-1, {}}, {-1, {}}}},
        {"exactly fits", standard7, 255, 6, {{6, standard7}}},
        {"too long, and stays", standard7, 255, 5, {{-1, {}}, {-1, {}}}},
        {"too long for another address", standard7, 3, 5, {{-1, {}}, {-1, {}}}},
        {"two in turn", standard7 + enhanced9, 255, 64, {{6, standard7}, {10, enhanced9}, {0, {}}}},
        {"length 0 never completes", {2, 0, 0, 1, 1, 1, 1}, 255, 64, {{0, {}}, {0, {}}}},
        {"length bytes missing", {3, 0}, 255, 64, {{0, {}}}},
        {"shorter than its header", Bytes{2, 0, 1} + broadcast, 255, 64, {{1, {2}}, {-1, {}}}},
    };
    for (const Case& c : cases)
    {
        ZuProtQueue queue;
        queue.busAddrFilter = c.filter;
        add(queue, c.bytes);
        for (const Popped& answer : c.answers)
            EXPECT_EQ(answer, pop(queue, c.capacity)) << c.name;
    }
}

TEST(Queue, isFedByteByByte)
{
    const Bytes stream = advanced9 + broadcast + standard7;
    ZuProtQueue queue;
    Bytes handedOut;
    for (const uint8_t byte : stream)
    {
        EXPECT_EQ((Popped{0, {}}), pop(queue, 0)) << "incomplete, so the size of the buffer does not count";
        add(queue, {byte});
        handedOut = handedOut + pop(queue, 64).frame;
    }
    EXPECT_EQ(stream, handedOut);
}

TEST(Queue, clearForgetsBytesButNotTheFilter)
{
    for (const std::size_t unused :
         {0UL, 8UL, 100000UL}) // room that was asked for before, the last one in another block
    {
        ZuProtQueue queue;
        queue.busAddrFilter = 7;
        add(queue, broadcast);
        queue.next(unused);
        queue.clear();
        EXPECT_EQ(7, queue.busAddrFilter);
        EXPECT_EQ((Popped{0, {}}), pop(queue, 64));
        queue.next(8);
        queue.addSize(5);
        EXPECT_EQ((Popped{-1, {}}), pop(queue, 64)) << "room that nobody wrote reads as zero, not as what was cleared";
    }
}

TEST(Queue, lengthsNearTheTopOfTheirTypeDoNotWrap)
{
    ZuProtQueue queue;
    add(queue, {0x06, 0xFF});
    EXPECT_THROW(queue.next(SIZE_MAX), std::length_error);
    EXPECT_THROW(queue.next(SIZE_MAX - 1), std::length_error);
    const Bytes rest = {0x52, 0x00, 0xAA, 0xBB};
    std::copy(rest.begin(), rest.end(), queue.next(rest.size()));
    queue.addSize(SIZE_MAX);
    EXPECT_EQ((Popped{6, Bytes{0x06, 0xFF} + rest}), pop(queue, 64));
}

TEST(Queue, agreesWithTheModelOnRandomStreams)
{
    const uint8_t firsts[] = {2, 2, 3, 3, 5, 6, 9, 20, 255, 0, 1, 4};
    const std::size_t capacities[] = {0, 1, 2, 4, 5, 6, 16, 300, 1000};
    for (unsigned seed = 0; seed < 300; ++seed)
    {
        std::mt19937 random(seed);
        ZuProtQueue queue;
        Model model;
        queue.busAddrFilter = model.filter = static_cast<uint8_t>(random() % 2 != 0 ? 255 : random() % 3);
        for (int step = 0; step < 200; ++step)
        {
            if (random() % 40 == 0)
            {
                queue.clear();
                model.store.clear();
                model.fill = 0;
            }
            Bytes bytes(random() % 12);
            for (uint8_t& byte : bytes)
                byte = static_cast<uint8_t>(random() % 4);
            if (bytes.size() > 3 && random() % 2 != 0)
                bytes[0] = firsts[random() % std::size(firsts)];
            const std::size_t room = bytes.size() + random() % 5;
            const std::size_t count = random() % 8 == 0 ? room + random() % 3 : bytes.size();
            std::copy(bytes.begin(), bytes.end(), queue.next(room));
            queue.addSize(count);
            model.add(bytes, room, count);
            const std::size_t capacity = capacities[random() % std::size(capacities)];
            ASSERT_EQ(model.pop(capacity), pop(queue, capacity)) << "seed " << seed << " step " << step;
        }
    }
}
} // namespace
