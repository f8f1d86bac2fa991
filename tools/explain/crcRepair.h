// Finds the one byte that was lost, put in or changed on the way, by the check sum.
#ifndef ZUCOM_TOOLS_CRC_REPAIR_H
#define ZUCOM_TOOLS_CRC_REPAIR_H

#include "tools/explain/frameLayout.h"

struct Repair
{
    enum Kind
    {
        insert, // a byte is missing before the offset
        drop,   // the byte at the offset is too many
        change, // the byte at the offset has another value
    };
    Kind kind;
    std::size_t offset;
    std::uint8_t value; // of the byte that was sent; for drop, of the byte that is too many
};

Bytes repaired(ByteView bytes, const Repair& repair);

// Every single-byte repair that turns the bytes into a whole frame, at most as many as asked for; of repairs with the
// same result, the first. Takes time in proportion to the length.
std::vector<Repair> findRepairs(ByteView bytes, std::size_t atMost);

#endif
