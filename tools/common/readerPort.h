// A port of the library that closes itself.
#ifndef ZUCOM_TOOLS_READER_PORT_H
#define ZUCOM_TOOLS_READER_PORT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <zucom/zuProtocol.h>

class ReaderPort
{
public:
    explicit ReaderPort(const std::string& devicePath); // throws Refused when the device does not open
    ~ReaderPort();
    ReaderPort(const ReaderPort&) = delete;
    ReaderPort& operator=(const ReaderPort&) = delete;

    int set(const char* key, const std::string& value); // 0, or the library's code
    std::string get(const char* key) const;             // the value, or the text of the library's code
    int transmit(const ZuProt& frame);                  // number of bytes sent, or the library's code
    int receive(std::span<std::uint8_t> buffer);        // number of bytes received, or the library's code
    int command(const char* name);                      // 0, or the library's code; for commands without a value

private:
    int handle_;
};

// The library's text for a code, with the code, for example "ZUCOM: receive timeout (-1030)".
std::string codeText(int code);

#endif
