// The port object: handles, defaults, lifetime.

#include <zucom/zucomPort.h>

#include <cctype>
#include <mutex>

namespace
{
constexpr uint32_t handleMask = 0x0FFFFFFF;
} // namespace

void strtoup(char* text)
{
    for (; *text != '\0'; ++text)
        *text = static_cast<char>(std::toupper(static_cast<unsigned char>(*text)));
}

ZucomPort::ZucomPort(const char* path)
    : portHandle(nextPortHandle()), devicePath(path != nullptr ? path : ""), openedPath(devicePath)
{
    logger = std::make_unique<ZucomLogger>(portHandle);
}

ZucomPort::~ZucomPort() = default;

int ZucomPort::nextPortHandle()
{
    static std::mutex mutex;
    static uint32_t currentPortHandle = 0;

    const std::lock_guard lock(mutex);
    return static_cast<int>(++currentPortHandle & handleMask);
}
