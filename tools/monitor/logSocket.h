// The receiving end of the library's datagram output.
#ifndef ZUCOM_TOOLS_LOG_SOCKET_H
#define ZUCOM_TOOLS_LOG_SOCKET_H

#include <optional>
#include <string>

#include <zucom/zuSocket.h>

class LogSocket
{
public:
    // Listens on an IPv4 or IPv6 address and a port, or on a path that begins with "/". A socket that nobody listens on
    // any more is replaced. Throws Refused when that fails, UsageError for what is no address.
    LogSocket(const std::string& address, int port);
    ~LogSocket(); // removes the path
    LogSocket(const LogSocket&) = delete;
    LogSocket& operator=(const LogSocket&) = delete;

    int descriptor() const { return socket_.socketFd; }
    std::optional<std::string> receive(); // the next datagram, or nothing when none waits

private:
    void bindSocket();
    bool isAbandoned() const;

    ZuSocket socket_;
    std::string path_; // to remove
};

#endif
