// The receiving end of the library's datagram output.
#include "tools/monitor/logSocket.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/common/failure.h"

namespace
{

constexpr std::size_t largestDatagram = 256 * 1024; // a Unix-domain socket takes the dump of the longest frame

}

LogSocket::LogSocket(const std::string& address, int port)
{
    constexpr int noAddress = -2;
    socket_.socketType = SOCK_DGRAM;
    const int result = socket_.createByAddress(address, port);
    if (result == noAddress)
        throw UsageError(address + " is neither an IPv4 nor an IPv6 address, nor a path that begins with /");
    if (result < 0)
        throw Refused(address + ": no socket: " + std::strerror(errno));
    fcntl(socket_.socketFd, F_SETFD, FD_CLOEXEC);
    try
    {
        bindSocket();
    }
    catch (...)
    {
        close(socket_.socketFd);
        throw;
    }
}

LogSocket::~LogSocket()
{
    close(socket_.socketFd);
    if (!path_.empty())
        unlink(path_.c_str());
}

std::optional<std::string> LogSocket::receive()
{
    std::string datagram(largestDatagram, '\0');
    const ssize_t count = recv(socket_.socketFd, datagram.data(), datagram.size(), MSG_DONTWAIT);
    if (count < 0 && errno != EAGAIN && errno != EINTR)
        throw Refused(std::string("receiving: ") + std::strerror(errno));
    if (count < 0)
        return std::nullopt;
    datagram.resize(static_cast<std::size_t>(count));
    return datagram;
}

void LogSocket::bindSocket()
{
    const auto* destination = reinterpret_cast<const sockaddr*>(&socket_.socketAddress);
    int result = bind(socket_.socketFd, destination, socket_.sockAddrLen());
    if (result != 0 && errno == EADDRINUSE && isAbandoned() && unlink(socket_.address().c_str()) == 0)
        result = bind(socket_.socketFd, destination, socket_.sockAddrLen());
    if (result != 0)
        throw Refused(socket_.address() + ": cannot listen: " + std::strerror(errno));
    if (socket_.isUnixDomain())
        path_ = socket_.address();
}

bool LogSocket::isAbandoned() const // the path is a socket, but nobody receives there
{
    struct stat status
    {
    };
    if (!socket_.isUnixDomain() || lstat(socket_.address().c_str(), &status) != 0 || !S_ISSOCK(status.st_mode))
        return false;
    const int probe = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return false;
    const auto* destination = reinterpret_cast<const sockaddr*>(&socket_.socketAddress);
    const bool refused = connect(probe, destination, socket_.sockAddrLen()) != 0 && errno == ECONNREFUSED;
    close(probe);
    return refused;
}
