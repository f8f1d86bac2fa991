// The exported functions: each answers from the registry or hands the call to the port of its handle.

#include <zucom/zucom.h>

#include <cstring>

#include <zucom/zucomErrorText.h>
#include <zucom/zucomPort.h>
#include <zucom/zucomPortHandler.h>

// What the exported functions share; a friend of the registry.
struct ZucomEntry
{
    static ZucomPortHandler& registry() { return *ZucomPortHandler::instance(); }

    // Keeps a failure as the registry's last error and passes the result on.
    static int recorded(int result)
    {
        if (result < 0)
            registry().lastError.store(result, std::memory_order_relaxed);
        return result;
    }

    // Runs an operation on the port of a handle. An unknown handle is always the registry's error.
    template <class Operation>
    static int withPort(int handle, Operation operation)
    {
        ZucomPort* port = registry().getPort(handle);
        return port != nullptr ? operation(*port) : recorded(ZUCOM_ERR_UNKNOWN_HANDLE);
    }

    static int open(const char* devicePath)
    {
        if (devicePath == nullptr)
            return ZUCOM_ERR_NULL;
        ZucomPort* port = registry().addNewPort(devicePath);
        if (port == nullptr)
            return ZUCOM_ERR_PORT_OBJECT;
        const int handle = registry().handleOf(*port);
        const int result = port->openPort();
        if (result >= 0)
            return handle;
        registry().deletePort(handle);
        return result;
    }

    static int close(int handle)
    {
        return withPort(handle,
                        [&](ZucomPort& port)
                        {
                            port.closePort();
                            return registry().deletePort(handle);
                        });
    }

    static int report(int error, int* code, char* text)
    {
        *code = error;
        std::strcpy(text, ZucomErrorText::getErrorText(error)); // NOLINT: the caller's buffer holds any text
        return ZUCOM_OK;
    }

    static int lastError(int handle, int* code, char* text)
    {
        if (code == nullptr || text == nullptr)
            return recorded(ZUCOM_ERR_NULL);
        if (handle == 0)
            return report(registry().lastError.load(std::memory_order_relaxed), code, text);
        return withPort(handle, [&](ZucomPort& port) { return report(registry().lastErrorOf(port), code, text); });
    }

    static const char* version() { return registry().version; }
};

const char* ZUCOM_GetDLLVersion(void) { return ZucomEntry::version(); }

int ZUCOM_GetErrorText(int code, char* text)
{
    int same = 0;
    return text != nullptr ? ZucomEntry::report(code, &same, text) : ZucomEntry::recorded(ZUCOM_ERR_NULL);
}

int ZUCOM_GetLastError(int handle, int* code, char* text) { return ZucomEntry::lastError(handle, code, text); }

int ZUCOM_OpenPort(const char* devicePath) { return ZucomEntry::recorded(ZucomEntry::open(devicePath)); }

int ZUCOM_ClosePort(int handle) { return ZucomEntry::close(handle); }

int ZUCOM_GetPortList(int handle) { return ZucomEntry::registry().getPortList(handle); }

int ZUCOM_GetPortPara(int handle, const char* key, char* value)
{
    return ZucomEntry::withPort(handle, [&](ZucomPort& port) { return port.getPortPara(key, value); });
}

int ZUCOM_SetPortPara(int handle, const char* key, const char* value)
{
    return ZucomEntry::withPort(handle, [&](ZucomPort& port) { return port.setPortPara(key, value); });
}

int ZUCOM_DoPortCmd(int handle, const char* command, char* value)
{
    return ZucomEntry::withPort(handle, [&](ZucomPort& port) { return port.doPortCmd(command, value); });
}

int ZUCOM_GetPortHnd(const char* devicePath)
{
    return ZucomEntry::recorded(ZucomEntry::registry().getPortHnd(devicePath));
}

int ZUCOM_Transmit(int handle, const uint8_t* data, size_t len)
{
    return ZucomEntry::recorded(
        ZucomEntry::withPort(handle, [&](ZucomPort& port) { return port.transmit(data, len); }));
}

int ZUCOM_Receive(int handle, uint8_t* buffer, size_t size)
{
    return ZucomEntry::recorded(
        ZucomEntry::withPort(handle, [&](ZucomPort& port) { return port.receive(buffer, size); }));
}

int ZUCOM_DetectPort(const char*) { return ZucomEntry::recorded(ZUCOM_ERR_UNSUPPORTED); }

int ZUCOM_AddEventHandler(int, void*) { return ZucomEntry::recorded(ZUCOM_ERR_UNSUPPORTED); }

int ZUCOM_DelEventHandler(int, void*) { return ZucomEntry::recorded(ZUCOM_ERR_UNSUPPORTED); }

int ZUCOM_Transceive(int, const uint8_t*, size_t, uint8_t*, size_t)
{
    return ZucomEntry::recorded(ZUCOM_ERR_UNSUPPORTED);
}
