// What the bytes of one frame mean, and what is wrong with them.
#ifndef ZUCOM_TOOLS_FRAME_READING_H
#define ZUCOM_TOOLS_FRAME_READING_H

#include <optional>
#include <string>

#include "tools/explain/frameLayout.h"

enum class Direction
{
    unknown,
    request, // to the reader
    answer,  // from the reader
};

struct FrameField
{
    const char* name;
    std::size_t offset;
    std::size_t length;
    std::string bytes; // upper-case digits, "##" for a secret byte
    std::string meaning;
};

struct FrameReading
{
    bool right = false;
    Direction direction = Direction::unknown;
    const char* kind = nullptr; // null when the first byte tells none
    std::size_t length = 0;     // bytes that are here
    std::optional<std::size_t> statedLength;
    std::optional<int> address;
    std::optional<int> command;
    std::optional<int> status; // of an answer, and where it is not known which way the frame went
    std::optional<int> crcFound;
    std::optional<int> crcExpected;
    std::vector<FrameField> fields;    // in order, without holes: together they are all bytes
    std::vector<std::string> faults;   // what does not fit
    std::vector<std::string> remedies; // what would make it right, most likely first
};

FrameReading readFrame(ByteView bytes, Direction direction);

// Cuts bytes into frames: each right frame stands alone, what lies between is a piece of its own. When no right frame
// is found, the one piece is everything.
std::vector<ByteView> splitFrames(ByteView bytes);

#endif
