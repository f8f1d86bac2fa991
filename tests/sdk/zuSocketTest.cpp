// Socket destinations: what each text becomes, and what an object answers about it.

#include <zucom/zuSocket.h>

#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace
{
class Socket : public testing::Test
{
protected:
    // The owner closes, never the object.
    void TearDown() override { EXPECT_TRUE(socket_.socketFd < 0 || ::close(socket_.socketFd) == 0); }

    void expectCleared(const ZuSocket& socket)
    {
        EXPECT_EQ(-1, socket.socketFd);
        EXPECT_EQ(SOCK_STREAM, socket.socketType);
        EXPECT_EQ(0, socket.socketAddress.ss_family);
        EXPECT_FALSE(socket.isIPv4() || socket.isIPv6() || socket.isUnixDomain());
        EXPECT_EQ("", socket.address());
        EXPECT_EQ(-1, socket.port());
        EXPECT_EQ(0U, socket.sockAddrLen());
    }

    ZuSocket socket_;
};

struct Destination
{
    std::string text;
    int32_t port;
    std::string address;
    int32_t storedPort;
    uint32_t length;
    char kind; // 4, 6, u
};

const Destination destinations[] = {
    {"192.168.1.10", 4711, "192.168.1.10", 4711, 16, '4'},
    {"0.0.0.0", 1, "0.0.0.0", 1, 16, '4'},
    {"::1", 9000, "::1", 9000, 28, '6'},
    {"2001:DB8:0::1", 65535, "2001:db8::1", 65535, 28, '6'},
    {"::ffff:1.2.3.4", 258, "::ffff:1.2.3.4", 258, 28, '6'},
    {"/tmp/log.sock", 0, "/tmp/log.sock", -1, 110, 'u'},
    {"/", -5, "/", -1, 110, 'u'},
    {"/" + std::string(106, 'p'), 0, "/" + std::string(106, 'p'), -1, 110, 'u'},
    {"/" + std::string(199, 'p'), 0, "/" + std::string(106, 'p'), -1, 110, 'u'},
};

TEST_F(Socket, isClearedAtFirst) { expectCleared(socket_); }

TEST_F(Socket, keepsEachDestinationAndNothingOfTheOneBefore)
{
    for (int round = 0; round < 2; ++round) // the second round meets every kind behind every other
        for (const Destination& d : destinations)
            for (const int type : {SOCK_DGRAM, SOCK_STREAM})
            {
                socket_.socketType = type;
                ASSERT_EQ(0, socket_.createByAddress(d.text, d.port)) << d.text;
                int created = -1;
                socklen_t size = sizeof created;
                EXPECT_EQ(0, ::getsockopt(socket_.socketFd, SOL_SOCKET, SO_TYPE, &created, &size));
                EXPECT_EQ(type, created);
                EXPECT_EQ(d.address, socket_.address());
                EXPECT_EQ(d.storedPort, socket_.port());
                EXPECT_EQ(d.length, socket_.sockAddrLen());
                EXPECT_EQ(d.kind == '4', socket_.isIPv4());
                EXPECT_EQ(d.kind == '6', socket_.isIPv6());
                EXPECT_EQ(d.kind == 'u', socket_.isUnixDomain());
                ::close(std::exchange(socket_.socketFd, -1));
                EXPECT_FALSE(socket_.isIPv4() || socket_.isIPv6() || socket_.isUnixDomain()) << "no descriptor";
            }
}

TEST_F(Socket, refusesWhatIsNoAddressOrNoPort)
{
    struct Case
    {
        const char* text;
        int32_t port, result;
    };
    const Case cases[] = {
        {"localhost", 80, -2}, {"", 80, -2},         {"1.2.3", 80, -2},       {"1.2.3.256", 80, -2},
        {" 1.2.3.4", 80, -2},  {"::g", 80, -2},      {"1.2.3.4:80", 80, -2},  {"fe80::1%lo", 80, -2},
        {"10.0.0.1", 0, -3},   {"10.0.0.1", -1, -3}, {"10.0.0.1", 65536, -3}, {"10.0.0.1", INT32_MIN, -3},
        {"::1", 0, -3},        {"::1", 65536, -3},   {"::1", 65536 + 80, -3}, {"localhost", 0, -2},
    };
    ASSERT_EQ(0, socket_.createByAddress("/tmp/before", 0));
    const int32_t before = socket_.socketFd;
    for (const Case& c : cases)
    {
        EXPECT_EQ(c.result, socket_.createByAddress(c.text, c.port)) << c.text << ' ' << c.port;
        EXPECT_EQ(before, socket_.socketFd);
        EXPECT_TRUE(socket_.isUnixDomain()) << "the family stays";
    }
}

TEST_F(Socket, resolvesHostNames)
{
    for (const int32_t port : {0, -1, 65536})
        EXPECT_EQ(-3, socket_.createByHostname("localhost", port));
    EXPECT_EQ(-4, socket_.createByHostname("", 80));
    EXPECT_EQ(-4, socket_.createByHostname("no host name", 80));
    expectCleared(socket_);
    ASSERT_EQ(0, socket_.createByHostname("127.0.0.2", 80)); // needs no resolver
    EXPECT_TRUE(socket_.isIPv4());
    EXPECT_EQ("127.0.0.2", socket_.address());
    EXPECT_EQ(80, socket_.port());
}

TEST_F(Socket, withoutADescriptorKeepsTheAddress)
{
    rlimit limit{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &limit));
    const rlimit none = {0, limit.rlim_max};
    ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &none));
    const int32_t result = socket_.createByAddress("1.2.3.4", 5);
    ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &limit));
    EXPECT_EQ(-1, result);
    EXPECT_LT(socket_.socketFd, 0);
    EXPECT_FALSE(socket_.isIPv4());
    EXPECT_EQ("1.2.3.4", socket_.address());
}

TEST_F(Socket, movesAndLeavesTheSourceCleared)
{
    socket_.socketType = SOCK_DGRAM;
    ASSERT_EQ(0, socket_.createByAddress("::1", 9000));
    const int32_t descriptor = socket_.socketFd;
    ZuSocket target(std::move(socket_));
    expectCleared(socket_); // NOLINT(bugprone-use-after-move): the cleared source is what is promised
    socket_ = std::move(target);
    expectCleared(target); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(descriptor, socket_.socketFd);
    EXPECT_EQ(SOCK_DGRAM, socket_.socketType);
    EXPECT_TRUE(socket_.isIPv6());
    EXPECT_EQ(9000, socket_.port());
    EXPECT_NE(-1, ::fcntl(descriptor, F_GETFD)) << "a move closes nothing";
    socket_.clear();
    expectCleared(socket_);
    EXPECT_EQ(0, ::close(descriptor)) << "clear() closes nothing";
}

TEST(SocketText, isToldApartByKind)
{
    struct Case
    {
        const char* text;
        bool ipv4, ipv6;
    };
    const Case cases[] = {
        {"1.2.3.4", true, false},    {"1.2.3", false, false},   {"::ffff:1.2.3.4", false, true},
        {"::", false, true},         {"/tmp", false, false},    {"", false, false},
        {"localhost", false, false}, {"1::2::3", false, false}, {"01.2.3.4", false, false},
    };
    for (const Case& c : cases)
    {
        EXPECT_EQ(c.ipv4, ZuSocket::isIPv4Address(c.text)) << c.text;
        EXPECT_EQ(c.ipv6, ZuSocket::isIPv6Address(c.text)) << c.text;
    }
}

static_assert(std::is_nothrow_move_constructible_v<ZuSocket> && std::is_nothrow_move_assignable_v<ZuSocket>);
static_assert(!std::is_copy_constructible_v<ZuSocket> && !std::is_copy_assignable_v<ZuSocket>);
} // namespace
