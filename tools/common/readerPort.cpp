// A port of the library that closes itself.
#include "tools/common/readerPort.h"

#include <zucom/zucom.h>

#include "tools/common/failure.h"

ReaderPort::ReaderPort(const std::string& devicePath) : handle_(ZUCOM_OpenPort(devicePath.c_str()))
{
    if (handle_ < 0)
        throw Refused(devicePath + " does not open: " + codeText(handle_));
}

ReaderPort::~ReaderPort() { ZUCOM_ClosePort(handle_); }

int ReaderPort::set(const char* key, const std::string& value)
{
    return ZUCOM_SetPortPara(handle_, key, value.c_str());
}

std::string ReaderPort::get(const char* key) const
{
    char value[4096] = ""; // a path is no longer
    const int code = ZUCOM_GetPortPara(handle_, key, value);
    return code < 0 ? codeText(code) : std::string(value);
}

int ReaderPort::transmit(const ZuProt& frame)
{
    std::size_t length = 0;
    const std::uint8_t* bytes = frame.protocol(&length);
    return ZUCOM_Transmit(handle_, bytes, length);
}

int ReaderPort::receive(std::span<std::uint8_t> buffer) { return ZUCOM_Receive(handle_, buffer.data(), buffer.size()); }

int ReaderPort::command(const char* name)
{
    char value[ZUCOM_COMMAND_VALUE_SIZE] = "";
    return ZUCOM_DoPortCmd(handle_, name, value);
}

std::string codeText(int code)
{
    char text[ZUCOM_ERROR_TEXT_SIZE];
    ZUCOM_GetErrorText(code, text);
    return std::string(text) + " (" + std::to_string(code) + ")";
}
