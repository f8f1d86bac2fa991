/**
 * @file
 * The receiving end of the datagram output.
 */
#ifndef TESTS_LOGGER_COLLECTOR_H
#define TESTS_LOGGER_COLLECTOR_H

#include <string>

/** A bound datagram socket; call it in the process that logs, before the first logger. */
class Collector
{
public:
    /** @param address  "127.0.0.1", "::1" or the path of a socket that is created. */
    explicit Collector(const std::string& address);
    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;
    ~Collector();

    /** @return Whether the machine has this kind of address. */
    bool isBound() const { return bound_; }

    /** @return The entries that direct the datagram output here. */
    std::string configuration() const;

    /** Waits for datagrams. @return Their bytes, "nothing" in place of one that did not come within a minute. */
    std::string receive(int count = 1) const;

    /** @return The bytes of a datagram that waits already; empty when none does. */
    std::string receiveWaiting() const;

private:
    std::string address_;
    int port_ = -1;
    int fd_ = -1;
    bool bound_ = false;
};

#endif
