// Socket addresses from text.

#include <zucom/zuSocket.h>

#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/un.h>
#include <unistd.h>

#include "fuzz/fuzz.h"

using fuzz::require;

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const int32_t port = (input.byte() << 16 | input.byte() << 8 | input.byte()) - 0x10000;
    const std::string text = input.textUpTo('\0');
    ZuSocket socket;
    socket.socketType = SOCK_DGRAM;
    const int32_t result = socket.createByAddress(text, port);

    const bool isPath = text.substr(0, 1) == "/";
    const bool isIPv4 = ZuSocket::isIPv4Address(text);
    const bool isIPv6 = ZuSocket::isIPv6Address(text);
    const bool isPort = port >= 1 && port <= 65535;
    require(!(isIPv4 && isIPv6) && !(isPath && (isIPv4 || isIPv6)), "a text has one kind");
    const int32_t expected = isPath ? 0 : !isIPv4 && !isIPv6 ? -2 : isPort ? 0 : -3;
    require(result == expected || (result == -1 && expected == 0), "the result");
    require((socket.socketFd >= 0) == (result == 0), "a descriptor for success only");
    if (result != 0)
        return 0;

    require(socket.isUnixDomain() == isPath && socket.isIPv4() == isIPv4 && socket.isIPv6() == isIPv6, "its kind");
    require(socket.port() == (isPath ? -1 : port), "its port");
    const std::string address = socket.address();
    if (isPath)
        require(address == text.substr(0, 107), "the path, cut to what fits");
    in6_addr bytes{};
    in6_addr again{};
    const int family = isIPv4 ? AF_INET : AF_INET6;
    require(isPath || (::inet_pton(family, text.c_str(), &bytes) == 1 &&
                       ::inet_pton(family, address.c_str(), &again) == 1 && std::memcmp(&bytes, &again, 16) == 0),
            "the address reads back to the same bytes");
    require(socket.sockAddrLen() == (isPath   ? sizeof(sockaddr_un)
                                     : isIPv4 ? sizeof(sockaddr_in)
                                              : sizeof(sockaddr_in6)),
            "the length of its structure");
    ::close(socket.socketFd);
    return 0;
}
