// The serial devices of a machine as its kernel describes them, without opening any.
#ifndef ZUCOM_TOOLS_SERIAL_DEVICES_H
#define ZUCOM_TOOLS_SERIAL_DEVICES_H

#include <filesystem>
#include <string>
#include <vector>

#include "tools/common/options.h"

// Where the kernel's trees are; tests bring trees of their own.
struct SystemRoots
{
    std::string sys = "/sys";
    std::string dev = "/dev";
    std::string proc = "/proc";
};

void addRootOptions(Options& options, SystemRoots& roots); // --sys, --dev and --proc

struct Holder // a process that has the device open
{
    int pid;
    std::string name;
    bool otherEnd; // it has the other end of this pseudo-terminal: it is the device, not a user of it
};

struct SerialDevice
{
    std::string path;
    std::vector<std::string> byId; // names that stay the same when a device is plugged in again
    std::string driver;
    std::string usbVendor; // the USB texts are empty for other devices
    std::string usbProduct;
    std::string usbSerial;
    std::string usbName;      // manufacturer and product in words
    std::string latencyTimer; // ms; empty where the driver has none
    std::filesystem::path latencyFile;
    std::vector<Holder> holders;
};

// All that have hardware, in the order of their names; with the flag those as well whose driver found none.
std::vector<SerialDevice> serialDevices(const SystemRoots& roots, bool withoutHardware);

// What is known about one device node; a node the kernel's tree does not know, such as a pseudo-terminal, has just the
// path and the holders.
SerialDevice describeDevice(const SystemRoots& roots, const std::filesystem::path& node);

// Whether all processes could be looked at; without rights only the user's own show what they have open.
bool seesAllProcesses();

#endif
