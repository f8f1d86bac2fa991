// Sends one frame to a reader and shows its answer: exchange /dev/ttyUSB0
#include <iostream>
#include <stdexcept>
#include <string>

#include <zucom/zuProtocol.h>
#include <zucom/zucom.h>
#include <zucom/zucomErrorText.h>

static int check(const std::string& step, int result)
{
    if (result < 0)
        throw std::runtime_error(step + ": " + ZucomErrorText::getErrorText(result));
    return result;
}

struct Port
{
    const int handle;
    explicit Port(const char* device) : handle(check("open", ZUCOM_OpenPort(device))) {}
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;
    ~Port() { ZUCOM_ClosePort(handle); }
};

int main(int argc, char** argv)
try
{
    const Port port(argc > 1 ? argv[1] : "/dev/ttyUSB0");
    check("BAUD", ZUCOM_SetPortPara(port.handle, "BAUD", "115200"));
    check("TIMEOUT", ZUCOM_SetPortPara(port.handle, "TIMEOUT", "2000"));

    const uint8_t command[] = {0x52, 0x00};
    ZuProt request;
    request.setPayload(command, sizeof command, 0, 0, 255); // a standard frame to every bus address
    std::size_t length = 0;
    const uint8_t* bytes = request.protocol(&length);
    check("transmit", ZUCOM_Transmit(port.handle, bytes, length));

    uint8_t answer[255];
    const int count = check("receive", ZUCOM_Receive(port.handle, answer, sizeof answer));
    std::string text;
    for (int i = 0; i < count; ++i)
        ZuProt::appendByteToHexString(answer[i], text.append(i > 0 ? " " : ""));
    std::cout << text << "\n";
}
catch (const std::exception& error)
{
    std::cerr << error.what() << "\n";
    return 1;
}
