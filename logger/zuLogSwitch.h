// How the configuration writes a switch.
#pragma once

#include <string_view>

// Off is exactly "off" or "0"; everything else switches on, "OFF" and an empty value included.
constexpr bool isSwitchedOn(std::string_view value) { return value != "off" && value != "0"; }
