// The bits of a logger's conditions.
#pragma once

#include <cstdint>

namespace ZuLogCondition
{
constexpr uint32_t trace = 0x00000001;
constexpr uint32_t error = 0x80000000;
} // namespace ZuLogCondition
