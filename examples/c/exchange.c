/* Sends one frame to a reader and shows its answer: exchange /dev/ttyUSB0 */
#include <stdio.h>
#include <zucom/zucom.h>

static int check(const char* step, int result)
{
    char text[ZUCOM_ERROR_TEXT_SIZE];
    if (result < 0)
    {
        ZUCOM_GetErrorText(result, text);
        fprintf(stderr, "%s: %s (%d)\n", step, text, result);
    }
    return result;
}

int main(int argc, char** argv)
{
    const uint8_t request[] = {0x06, 0xFF, 0x52, 0x00, 0x0F, 0x6E}; /* length, address, command 52 00, CRC */
    uint8_t answer[255];
    int length = -1;

    const int port = check("open", ZUCOM_OpenPort(argc > 1 ? argv[1] : "/dev/ttyUSB0"));
    if (port < 0)
        return 1;
    if (check("BAUD", ZUCOM_SetPortPara(port, "BAUD", "115200")) == 0 &&
        check("TIMEOUT", ZUCOM_SetPortPara(port, "TIMEOUT", "2000")) == 0 &&
        check("transmit", ZUCOM_Transmit(port, request, sizeof request)) >= 0)
        length = check("receive", ZUCOM_Receive(port, answer, sizeof answer));
    ZUCOM_ClosePort(port);

    for (int i = 0; i < length; ++i)
        printf("%02X%c", answer[i], i + 1 < length ? ' ' : '\n');
    return length < 0;
}
