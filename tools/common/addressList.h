// Bus addresses as a user writes them.
#ifndef ZUCOM_TOOLS_ADDRESS_LIST_H
#define ZUCOM_TOOLS_ADDRESS_LIST_H

#include <string>
#include <vector>

// Addresses and ranges between commas, for example "255,0-16", in this order, each once. Throws UsageError for anything
// else, for addresses above the highest one allowed, and for an empty list.
std::vector<int> addressesOf(const std::string& text, int highest);

#endif
