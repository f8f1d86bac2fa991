// Bus addresses as a user writes them.
#include "tools/common/addressList.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "tools/common/failure.h"

namespace
{

// A number that is the whole text, or -1.
int numberOf(const std::string& text)
{
    int number = -1;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? number : -1;
}

} // namespace

std::vector<int> addressesOf(const std::string& text, int highest)
{
    std::vector<int> addresses;
    std::istringstream items(text);
    for (std::string item; std::getline(items, item, ',');)
    {
        const std::size_t dash = item.find('-');
        const int first = numberOf(item.substr(0, dash));
        const int last = dash == std::string::npos ? first : numberOf(item.substr(dash + 1));
        if (first < 0 || last < first || last > highest)
            throw UsageError("addresses are numbers from 0 to " + std::to_string(highest) +
                             " such as 3 or 1,4-7, not: " + text);
        for (int address = first; address <= last; ++address)
            if (std::ranges::find(addresses, address) == addresses.end())
                addresses.push_back(address);
    }
    if (addresses.empty())
        throw UsageError("the list of addresses is empty");
    return addresses;
}
