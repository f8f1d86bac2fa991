#include "tests/logger/collector.h"

#include <cstddef>
#include <vector>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <zucom/zuSocket.h>

namespace
{
static_assert(offsetof(sockaddr_in, sin_port) == offsetof(sockaddr_in6, sin6_port));

std::string receiveFrom(int fd, int flags)
{
    std::vector<char> bytes(65536);
    const ssize_t count = ::recv(fd, bytes.data(), bytes.size(), flags);
    return count < 0 ? std::string() : std::string(bytes.data(), static_cast<std::size_t>(count));
}
} // namespace

Collector::Collector(const std::string& address) : address_(address)
{
    ZuSocket socket;
    socket.socketType = SOCK_DGRAM;
    if (socket.createByAddress(address, 1) != 0)
        return;
    fd_ = socket.socketFd;
    auto* const own = reinterpret_cast<sockaddr*>(&socket.socketAddress);
    if (!socket.isUnixDomain())
        reinterpret_cast<sockaddr_in*>(own)->sin_port = 0; // the system chooses a free one
    bound_ = ::bind(fd_, own, socket.sockAddrLen()) == 0;
    socklen_t length = sizeof socket.socketAddress;
    ::getsockname(fd_, own, &length);
    port_ = socket.port();
}

Collector::~Collector() { ::close(fd_); }

std::string Collector::configuration() const
{
    return "logudpaddr=" + address_ + "\n" + (port_ < 0 ? "" : "logudpport=" + std::to_string(port_) + "\n");
}

std::string Collector::receive(int count) const
{
    std::string bytes;
    for (; count > 0; --count)
    {
        pollfd waiting = {fd_, POLLIN, 0};
        bytes += ::poll(&waiting, 1, 60000) == 1 ? receiveFrom(fd_, 0) : "nothing";
    }
    return bytes;
}

std::string Collector::receiveWaiting() const { return receiveFrom(fd_, MSG_DONTWAIT); }
