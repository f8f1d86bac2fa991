/**
 * @file
 * One socket destination: IPv4 or IPv6 address and port, or the path of a Unix-domain socket.
 */
#ifndef ZU_SOCKET_H
#define ZU_SOCKET_H

#include <cstdint>
#include <string>

#include <sys/socket.h>

#include <zucom/zucomExport.h>

/**
 * Holds a destination and the descriptor of a socket created for it.
 *
 * It neither connects, binds, sends nor closes: the owner does, with the descriptor, the address and sockAddrLen().
 * Moves, leaving the source cleared; cannot be copied. Not synchronised; several threads may read one object.
 */
class ZUCOM_API ZuSocket
{
public:
    int32_t socketFd;               /**< descriptor of the socket; -1 when there is none */
    int32_t socketType;             /**< type to create, SOCK_STREAM or SOCK_DGRAM; set by the owner beforehand */
    sockaddr_storage socketAddress; /**< destination in network byte order */

    /** A cleared object. */
    ZuSocket();
    /** Takes over everything. @param source Cleared. */
    ZuSocket(ZuSocket&& source) noexcept;
    /** Takes over everything; an earlier descriptor is not closed. @param source Cleared. @return This object. */
    ZuSocket& operator=(ZuSocket&& source) noexcept;
    ZuSocket(const ZuSocket&) = delete;
    ZuSocket& operator=(const ZuSocket&) = delete;
    /** Does not close the descriptor. */
    ~ZuSocket() = default;

    /** Forgets destination and descriptor, without closing it; the type becomes SOCK_STREAM. */
    void clear();

    /**
     * Stores a destination given as an address and creates a socket of socketType for it. Names are not resolved.
     *
     * @param text  IPv4 address in dotted form, IPv6 address, or a path that begins with "/" (cut to 107 characters).
     * @param port  1 to 65535; not looked at for a path.
     * @return 0; -1 when the system creates no socket; -2 when the text is no address; -3 when the port is out of
     * range.
     */
    int32_t createByAddress(const std::string& text, int32_t port);

    /**
     * Resolves a host name, stores its first address and creates a socket of socketType for it.
     *
     * @param name  Host name or address text.
     * @param port  1 to 65535.
     * @return 0; -1 when the system creates no socket; -3 when the port is out of range (before any look-up); -4 when
     *         the name has no IPv4 or IPv6 address.
     */
    int32_t createByHostname(const std::string& name, int32_t port);

    /** @return Length of the stored address in bytes: 110 Unix-domain, 16 IPv4, 28 IPv6, 0 none. */
    uint32_t sockAddrLen() const;
    /** @return The address as text, the path of a Unix-domain socket, or an empty text. */
    std::string address() const;
    /** @return The port in host byte order, or -1 where the destination has none. */
    int32_t port() const;
    /** @return Whether there is a socket and its destination is an IPv4 address. */
    bool isIPv4() const;
    /** @return Whether there is a socket and its destination is an IPv6 address. */
    bool isIPv6() const;
    /** @return Whether there is a socket and its destination is a path. */
    bool isUnixDomain() const;

    /** @param text Any text. @return Whether it is an IPv4 address in dotted form. */
    static bool isIPv4Address(const std::string& text);
    /** @param text Any text. @return Whether it is an IPv6 address. */
    static bool isIPv6Address(const std::string& text);

private:
    ZUCOM_LOCAL int32_t createSocket(int family);
};

#endif
