// The options that say what kind of frame goes around a payload.
#ifndef ZUCOM_TOOLS_FRAME_OPTIONS_H
#define ZUCOM_TOOLS_FRAME_OPTIONS_H

#include <cstdint>
#include <span>
#include <string>

#include <zucom/zuProtocol.h>

#include "tools/common/options.h"

struct FrameOptions
{
    std::string kind = "standard";
    int address = 255;
};

// Adds --kind and --address.
void addFrameOptions(Options& options, FrameOptions& frame);

// The request around a payload. Throws UsageError when the payload does not fit that kind of frame.
ZuProt buildRequest(const FrameOptions& frame, std::span<const std::uint8_t> payload);

#endif
