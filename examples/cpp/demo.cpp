// A whole conversation with a reader: open, set the line, one frame of each kind, read the settings back, one failure.
//
// Usage: demo DEVICE BAUD FRAME BUSADDRESS
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <zucom/zuProtocol.h>
#include <zucom/zucom.h>

namespace
{

const char* textOf(int code)
{
    static char text[ZUCOM_ERROR_TEXT_SIZE];
    ZUCOM_GetErrorText(code, text);
    return text;
}

// Reports one step; yields whether it went well.
bool report(const char* step, int code)
{
    std::printf("  %-24s %s\n", step, code < 0 ? textOf(code) : "ok");
    return code >= 0;
}

bool set(int handle, const char* key, const char* value)
{
    return report((std::string(key) + " = " + value).c_str(), ZUCOM_SetPortPara(handle, key, value));
}

// Sends a payload in a frame of one kind (0 standard, 2 advanced, 3 enhanced) and shows what comes back.
bool exchange(int handle, std::uint8_t busAddress, std::uint8_t kind, const char* name)
{
    const std::uint8_t payload[] = {0x52, 0x00};
    constexpr std::uint8_t isRequest = 1;
    ZuProt request;
    request.setPayload(payload, sizeof payload, kind, isRequest, busAddress);

    std::size_t length = 0;
    const std::uint8_t* bytes = request.protocol(&length);
    std::printf("  %-9s request %s\n", name, request.protocolToString().c_str());
    if (const int sent = ZUCOM_Transmit(handle, bytes, length); sent < 0)
        return report("            transmit", sent);

    std::uint8_t buffer[256];
    const int received = ZUCOM_Receive(handle, buffer, sizeof buffer);
    if (received < 0)
        return report("            answer ", received);

    std::string text;
    for (int i = 0; i < received; ++i)
        ZuProt::appendByteToHexString(buffer[i], text);
    ZuProt answer;
    answer.stringToProtocol(text);
    std::printf("            answer  %s   %s\n", answer.protocolToString().c_str(),
                answer.isValidProtocol() ? "valid" : "NOT valid");
    return answer.isValidProtocol();
}

bool converse(int handle, const char* baud, const char* frame, const char* busAddress)
{
    std::puts("Set the line");
    bool good = set(handle, "BAUD", baud);
    good = set(handle, "FRAME", frame) && good;
    good = set(handle, "TIMEOUT", "500") && good;
    good = set(handle, "BUSADDRESS", busAddress) && good;

    std::puts("Exchange a frame of each kind");
    const auto address = static_cast<std::uint8_t>(std::atoi(busAddress));
    good = exchange(handle, address, 0, "standard") && good;
    good = exchange(handle, address, 2, "advanced") && good;
    good = exchange(handle, address, 3, "enhanced") && good;

    std::puts("Read the settings back");
    for (const char* key : {"BAUD", "FRAME", "TIMEOUT", "BUSADDRESS", "OPMODE", "TXDELAYTIME"})
    {
        char value[ZUCOM_VALUE_SIZE] = "";
        good = ZUCOM_GetPortPara(handle, key, value) == ZUCOM_OK && good;
        std::printf("  %-12s %s\n", key, value);
    }

    std::puts("Ask for what no line can do");
    const bool refused = !set(handle, "BAUD", "1234567");
    int lastError = 0;
    char lastText[ZUCOM_ERROR_TEXT_SIZE] = "";
    ZUCOM_GetLastError(handle, &lastError, lastText);
    std::printf("  last error: %d %s\n", lastError, lastText);
    return good && refused;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5)
    {
        std::fprintf(stderr, "usage: demo DEVICE BAUD FRAME BUSADDRESS\n");
        return 2;
    }
    std::printf("Open %s with libzucom %s\n", argv[1], ZUCOM_GetDLLVersion());
    const int handle = ZUCOM_OpenPort(argv[1]);
    if (!report("open", handle))
        return 1;
    const bool good = converse(handle, argv[2], argv[3], argv[4]);
    std::puts("Close");
    return report("close", ZUCOM_ClosePort(handle)) && good ? 0 : 1;
}
