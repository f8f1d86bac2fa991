// The options that say what kind of frame goes around a payload.
#include "tools/common/frameOptions.h"

#include "tools/common/failure.h"
#include "tools/common/frameBytes.h"

namespace
{

struct Kind
{
    const char* name;
    std::uint8_t generation;
};

constexpr Kind kinds[] = {{"standard", 0}, {"advanced", 2}, {"enhanced", 3}};

} // namespace

void addFrameOptions(Options& options, FrameOptions& frame)
{
    options.choice("-k,--kind", frame.kind, {"standard", "advanced", "enhanced"}, "Kind of frame")
        .number("-a,--address", frame.address, 0, 255, "Bus address of the reader; 255 is any reader");
}

ZuProt buildRequest(const FrameOptions& frame, std::span<const std::uint8_t> payload)
{
    ZuProt request;
    for (const Kind& kind : kinds)
        if (frame.kind == kind.name && request.setPayload(payload.data(), payload.size(), kind.generation,
                                                          directionRequest, static_cast<std::uint8_t>(frame.address)))
            return request;
    throw UsageError("a payload of " + std::to_string(payload.size()) + " bytes does not fit a frame of kind " +
                     frame.kind);
}
