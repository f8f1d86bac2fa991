// Socket destinations.

#include <zucom/zuSocket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/un.h>

namespace
{
enum Result : int32_t
{
    created = 0,
    noSocket = -1,
    noAddress = -2,
    badPort = -3,
    unknownHost = -4
};

// The storage is filled and read by copying: no other type's access to it may be taken for unrelated.
template <class Address>
void store(sockaddr_storage& storage, const Address& destination)
{
    storage = {};
    std::memcpy(&storage, &destination, sizeof destination);
}

template <class Address>
Address load(const sockaddr_storage& storage)
{
    Address destination{};
    std::memcpy(&destination, &storage, sizeof destination);
    return destination;
}

bool isPort(int32_t port) { return port >= 1 && port <= 65535; }

in_port_t networkPort(int32_t port) { return htons(static_cast<in_port_t>(port)); }

void storeIPv4(sockaddr_storage& storage, const void* address, int32_t port)
{
    sockaddr_in destination{};
    destination.sin_family = AF_INET;
    destination.sin_port = networkPort(port);
    std::memcpy(&destination.sin_addr, address, sizeof destination.sin_addr);
    store(storage, destination);
}

void storeIPv6(sockaddr_storage& storage, const void* address, int32_t port)
{
    sockaddr_in6 destination{};
    destination.sin6_family = AF_INET6;
    destination.sin6_port = networkPort(port);
    std::memcpy(&destination.sin6_addr, address, sizeof destination.sin6_addr);
    store(storage, destination);
}

void storePath(sockaddr_storage& storage, const std::string& path)
{
    sockaddr_un destination{};
    destination.sun_family = AF_UNIX;
    path.copy(destination.sun_path, sizeof destination.sun_path - 1);
    store(storage, destination);
}

template <class Address>
bool parses(int family, const std::string& text, Address& address)
{
    return ::inet_pton(family, text.c_str(), &address) == 1;
}

template <class Address>
std::string addressText(int family, const Address& address)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    ::inet_ntop(family, &address, text.data(), text.size());
    return text.data();
}
} // namespace

ZuSocket::ZuSocket() { clear(); }

ZuSocket::ZuSocket(ZuSocket&& source) noexcept
    : socketFd(source.socketFd), socketType(source.socketType), socketAddress(source.socketAddress)
{
    source.clear();
}

ZuSocket& ZuSocket::operator=(ZuSocket&& source) noexcept
{
    if (this != &source)
    {
        socketFd = source.socketFd;
        socketType = source.socketType;
        socketAddress = source.socketAddress;
        source.clear();
    }
    return *this;
}

void ZuSocket::clear()
{
    socketFd = -1;
    socketType = SOCK_STREAM;
    socketAddress = {};
}

int32_t ZuSocket::createByAddress(const std::string& text, int32_t port)
{
    if (!text.empty() && text.front() == '/')
    {
        storePath(socketAddress, text);
        return createSocket(AF_UNIX);
    }
    in_addr ipv4{};
    in6_addr ipv6{};
    const bool isIPv4 = parses(AF_INET, text, ipv4);
    if (!isIPv4 && !parses(AF_INET6, text, ipv6))
        return noAddress;
    if (!isPort(port))
        return badPort;
    if (isIPv4)
    {
        storeIPv4(socketAddress, &ipv4, port);
        return createSocket(AF_INET);
    }
    storeIPv6(socketAddress, &ipv6, port);
    return createSocket(AF_INET6);
}

int32_t ZuSocket::createByHostname(const std::string& name, int32_t port)
{
    if (!isPort(port))
        return badPort;
    hostent entry{};
    hostent* host = nullptr;
    int error = 0;
    std::vector<char> memory(1024);
    while (::gethostbyname_r(name.c_str(), &entry, memory.data(), memory.size(), &host, &error) == ERANGE)
        memory.resize(memory.size() * 2);
    if (host == nullptr || host->h_addr_list[0] == nullptr)
        return unknownHost;
    switch (host->h_addrtype)
    {
    case AF_INET:
        storeIPv4(socketAddress, host->h_addr_list[0], port);
        return createSocket(AF_INET);
    case AF_INET6:
        storeIPv6(socketAddress, host->h_addr_list[0], port);
        return createSocket(AF_INET6);
    default:
        return unknownHost;
    }
}

uint32_t ZuSocket::sockAddrLen() const
{
    switch (socketAddress.ss_family)
    {
    case AF_UNIX:
        return sizeof(sockaddr_un);
    case AF_INET:
        return sizeof(sockaddr_in);
    case AF_INET6:
        return sizeof(sockaddr_in6);
    default:
        return 0;
    }
}

std::string ZuSocket::address() const
{
    switch (socketAddress.ss_family)
    {
    case AF_UNIX:
        return load<sockaddr_un>(socketAddress).sun_path;
    case AF_INET:
        return addressText(AF_INET, load<sockaddr_in>(socketAddress).sin_addr);
    case AF_INET6:
        return addressText(AF_INET6, load<sockaddr_in6>(socketAddress).sin6_addr);
    default:
        return {};
    }
}

int32_t ZuSocket::port() const
{
    switch (socketAddress.ss_family)
    {
    case AF_INET:
        return ntohs(load<sockaddr_in>(socketAddress).sin_port);
    case AF_INET6:
        return ntohs(load<sockaddr_in6>(socketAddress).sin6_port);
    default:
        return -1;
    }
}

bool ZuSocket::isIPv4() const { return socketFd >= 0 && socketAddress.ss_family == AF_INET; }

bool ZuSocket::isIPv6() const { return socketFd >= 0 && socketAddress.ss_family == AF_INET6; }

bool ZuSocket::isUnixDomain() const { return socketFd >= 0 && socketAddress.ss_family == AF_UNIX; }

bool ZuSocket::isIPv4Address(const std::string& text)
{
    in_addr address{};
    return parses(AF_INET, text, address);
}

bool ZuSocket::isIPv6Address(const std::string& text)
{
    in6_addr address{};
    return parses(AF_INET6, text, address);
}

int32_t ZuSocket::createSocket(int family)
{
    socketFd = ::socket(family, socketType, 0);
    return socketFd >= 0 ? created : noSocket;
}
