// A pseudo-terminal that another program opens as if it were a serial device.
#ifndef ZUCOM_TOOLS_PTY_DEVICE_H
#define ZUCOM_TOOLS_PTY_DEVICE_H

#include <cstdint>
#include <span>
#include <string>

#include "tools/sim/descriptor.h"

// Only speed and stop bits of its line show here: a pseudo-terminal knows no parity.
class PtyDevice
{
public:
    // A link is a second name of the device; one that is there already is replaced if it is a symbolic link.
    explicit PtyDevice(const std::string& link);
    ~PtyDevice();
    PtyDevice(const PtyDevice&) = delete;
    PtyDevice& operator=(const PtyDevice&) = delete;

    const std::string& path() const { return path_; }
    int descriptor() const { return master_.get(); }         // non-blocking: readable when the other program wrote
    int closingDescriptor() const { return closing_.get(); } // readable when a program closed the device

    // 0 for a speed or number of stop bits that does not matter.
    bool lineIs(int bitsPerSecond, int stopBits) const;

    // Exclusive mode would outlive a close, because the device stays open on this side. Called after a close only, it
    // could come too late for a program that is started next; called before an answer as well, it never does.
    void endExclusiveMode();

private:
    Descriptor master_;
    Descriptor slave_; // kept open, or the master would report an error whenever no program has the device open
    Descriptor closing_;
    std::string path_;
    std::string link_;
};

#endif
