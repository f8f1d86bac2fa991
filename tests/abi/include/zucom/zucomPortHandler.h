/**
 * @file
 * The registry of ports by handle.
 */
#ifndef ZUCOM_PORT_HANDLER_H
#define ZUCOM_PORT_HANDLER_H

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>

#include <zucom/zucomExport.h>

class ZucomPort;

/**
 * Owns every port object and finds it by its handle. All operations may run on any thread; a port that was found is
 * used without a lock, so nobody may delete it meanwhile.
 */
class ZUCOM_API ZucomPortHandler
{
public:
    /** @return The one registry of the process. */
    static ZucomPortHandler* instance();

    /**
     * Creates a port object and registers it under its handle. The device is not opened.
     *
     * @param devicePath  Path of the device node; copied.
     * @return The port, owned by the registry; null for a null path (no handle is taken), without memory, or when the
     *         handle is still in use.
     */
    ZucomPort* addNewPort(const char* devicePath);

    /** @param handle Any value. @return The port registered under it, or null. */
    ZucomPort* getPort(int handle);

    /** Removes a port and destroys it without closing it. @param handle Its handle. @return 0, or
     * ZUCOM_ERR_HANDLE_ZERO. */
    int deletePort(int handle);

    /** One step through the handles, see ZUCOM_GetPortList(). @param handle Last handle, or 0. @return Next, or a code.
     */
    int getPortList(int handle);

    /** Finds a port by path, see ZUCOM_GetPortHnd(). @param devicePath Path. @return Smallest handle, or a code. */
    int getPortHnd(const char* devicePath);

    /** Writes the version text. */
    void setVersion();

private:
    friend struct ZucomEntry; // the exported functions: last errors and the version text

    ZUCOM_LOCAL ZucomPortHandler();
    ZUCOM_LOCAL ~ZucomPortHandler() = default;
    ZucomPortHandler(const ZucomPortHandler&) = delete;
    ZucomPortHandler& operator=(const ZucomPortHandler&) = delete;

    ZUCOM_LOCAL static ZucomPortHandler g_portHandler;

    struct LastPort // what a thread remembers of its last look-up
    {
        int handle;
        uint32_t removals;
        ZucomPort* port;
    };

    ZUCOM_LOCAL __attribute__((noinline)) ZucomPort* lookUp(int handle, LastPort& last);
    ZUCOM_LOCAL int lastErrorOf(const ZucomPort& port) const;
    ZUCOM_LOCAL int handleOf(const ZucomPort& port) const;

    std::map<int, ZucomPort*> portMap;
    std::atomic<int> lastError{0};
    char version[16];
    std::mutex mutex;
    std::atomic<uint32_t> removals{0}; // raised whenever a port leaves the map
};

#endif
