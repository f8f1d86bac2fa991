// What can be said about a device node without opening it.
#ifndef ZUCOM_TOOLS_NODE_CHECKS_H
#define ZUCOM_TOOLS_NODE_CHECKS_H

#include "tools/common/serialDevices.h"
#include "tools/doctor/finding.h"

// Whether the device can be looked at any further. Each check adds one finding.
bool checkNode(const std::string& path, Findings& findings);
bool checkRights(const std::string& path, Findings& findings);
bool checkHolders(const SerialDevice& device, Findings& findings); // whether nobody else has it open
void checkLatency(const SerialDevice& device, Findings& findings);

#endif
