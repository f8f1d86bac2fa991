// Frames and the bytes they are made of.
#ifndef ZUCOM_TOOLS_FRAME_BYTES_H
#define ZUCOM_TOOLS_FRAME_BYTES_H

#include <cstdint>
#include <span>
#include <vector>

#include <zucom/zuProtocol.h>

// Direction flags of an enhanced frame.
constexpr std::uint8_t directionRequest = 1;
constexpr std::uint8_t directionResponse = 2;

// A frame that holds these bytes, valid or not.
ZuProt frameOfBytes(std::span<const std::uint8_t> bytes);

std::vector<std::uint8_t> bytesOfFrame(const ZuProt& frame);

std::vector<std::uint8_t> payloadOfFrame(const ZuProt& frame);

#endif
