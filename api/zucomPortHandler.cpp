// The registry of ports by handle.

#include <zucom/zucomPortHandler.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>

#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

namespace
{
constexpr int versionMajor = 4;
constexpr int versionMinor = 0;
constexpr int versionPatch = 0;
} // namespace

ZucomPortHandler ZucomPortHandler::g_portHandler;

ZucomPortHandler* ZucomPortHandler::instance() { return &g_portHandler; }

// The port is created outside the lock: its logger may read the configuration file.
ZucomPort* ZucomPortHandler::addNewPort(const char* devicePath)
try
{
    if (devicePath == nullptr)
        return nullptr;
    auto port = std::make_unique<ZucomPort>(devicePath);
    const std::lock_guard lock(mutex);
    const bool added = portMap.try_emplace(port->portHandle, port.get()).second;
    return added ? port.release() : nullptr;
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

// A thread as a rule goes on with the port that it used last. What it remembers holds while no port was removed. The
// memory for it is found without a call: it is small enough for what programs set aside for libraries loaded later.
ZucomPort* ZucomPortHandler::getPort(int handle)
{
    [[gnu::tls_model("initial-exec")]] thread_local LastPort last{};
    if (last.port != nullptr && last.handle == handle && last.removals == removals.load(std::memory_order_acquire))
        return last.port;
    return lookUp(handle, last);
}

ZucomPort* ZucomPortHandler::lookUp(int handle, LastPort& last)
{
    const std::lock_guard lock(mutex);
    const auto entry = portMap.find(handle);
    if (entry == portMap.end())
        return nullptr;
    last = {handle, removals.load(std::memory_order_relaxed), entry->second};
    return last.port;
}

int ZucomPortHandler::deletePort(int handle)
{
    std::unique_ptr<ZucomPort> port; // destroyed after the lock is released
    const std::lock_guard lock(mutex);
    const auto entry = portMap.find(handle);
    if (entry == portMap.end())
        return ZUCOM_ERR_HANDLE_ZERO;
    port.reset(entry->second);
    portMap.erase(entry);
    removals.fetch_add(1, std::memory_order_release);
    return ZUCOM_OK;
}

int ZucomPortHandler::getPortList(int handle)
{
    const auto fail = [this](int code)
    {
        lastError.store(code, std::memory_order_relaxed);
        return code;
    };
    if (handle < 0)
        return fail(ZUCOM_ERR_HANDLE_NEGATIVE);
    const std::lock_guard lock(mutex);
    if (portMap.empty())
        return fail(ZUCOM_ERR_PORT_LIST_EMPTY);
    auto entry = portMap.begin();
    if (handle != 0)
    {
        entry = portMap.find(handle);
        if (entry == portMap.end())
            return fail(ZUCOM_ERR_UNKNOWN_HANDLE);
        if (++entry == portMap.end())
            return fail(ZUCOM_ERR_NO_HANDLE);
    }
    lastError.store(ZUCOM_OK, std::memory_order_relaxed);
    return handleOf(*entry->second);
}

int ZucomPortHandler::getPortHnd(const char* devicePath)
{
    if (devicePath == nullptr)
        return ZUCOM_ERR_NULL;
    const std::lock_guard lock(mutex);
    const auto entry = std::find_if(portMap.begin(), portMap.end(),
                                    [&](const auto& port) { return port.second->openedPath == devicePath; });
    return entry != portMap.end() ? entry->first : ZUCOM_ERR_NO_HANDLE;
}

void ZucomPortHandler::setVersion()
{
    std::snprintf(version, sizeof version, "%02d.%02d.%02d", versionMajor, versionMinor, versionPatch);
}

ZucomPortHandler::ZucomPortHandler() { setVersion(); }

int ZucomPortHandler::lastErrorOf(const ZucomPort& port) const { return port.lastError; }

int ZucomPortHandler::handleOf(const ZucomPort& port) const { return port.portHandle; }
