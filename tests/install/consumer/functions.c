/* A C99 program that calls every exported function once. */
#include <stdio.h>
#include <string.h>
#include <zucom/zucom.h>

static int failures = 0;

static void expect(const char* call, int got, int wanted)
{
    if (got != wanted)
    {
        fprintf(stderr, "%s: %d, not %d\n", call, got, wanted);
        ++failures;
    }
}
#define EXPECT(call, wanted) expect(#call, call, wanted)

int main(void)
{
    char text[ZUCOM_ERROR_TEXT_SIZE];
    char value[ZUCOM_VALUE_SIZE];
    uint8_t bytes[8] = {0};
    int code = 0;

    EXPECT(strcmp(ZUCOM_GetDLLVersion(), "04.00.00"), 0);
    EXPECT(ZUCOM_OpenPort("/dev/null"), ZUCOM_ERR_PORT_OBJECT);
    EXPECT(ZUCOM_GetLastError(0, &code, text), ZUCOM_OK);
    EXPECT(code, ZUCOM_ERR_PORT_OBJECT);
    EXPECT(ZUCOM_GetErrorText(ZUCOM_ERR_NULL, text), ZUCOM_OK);
    EXPECT(strcmp(text, "ZUCOM: pointer is NULL"), 0);

    EXPECT(ZUCOM_GetPortList(0), ZUCOM_ERR_PORT_LIST_EMPTY);
    EXPECT(ZUCOM_GetPortHnd("/dev/null"), ZUCOM_ERR_NO_HANDLE);
    EXPECT(ZUCOM_GetPortPara(1, "BAUD", value), ZUCOM_ERR_UNKNOWN_HANDLE);
    EXPECT(ZUCOM_SetPortPara(1, "BAUD", "9600"), ZUCOM_ERR_UNKNOWN_HANDLE);
    EXPECT(ZUCOM_DoPortCmd(1, "FLUSHINQ", value), ZUCOM_ERR_UNKNOWN_HANDLE);
    EXPECT(ZUCOM_Transmit(1, bytes, sizeof bytes), ZUCOM_ERR_UNKNOWN_HANDLE);
    EXPECT(ZUCOM_Receive(1, bytes, sizeof bytes), ZUCOM_ERR_UNKNOWN_HANDLE);
    EXPECT(ZUCOM_ClosePort(1), ZUCOM_ERR_UNKNOWN_HANDLE);

    EXPECT(ZUCOM_DetectPort("/dev/null"), ZUCOM_ERR_UNSUPPORTED);
    EXPECT(ZUCOM_AddEventHandler(1, NULL), ZUCOM_ERR_UNSUPPORTED);
    EXPECT(ZUCOM_DelEventHandler(1, NULL), ZUCOM_ERR_UNSUPPORTED);
    EXPECT(ZUCOM_Transceive(1, bytes, sizeof bytes, bytes, sizeof bytes), ZUCOM_ERR_UNSUPPORTED);
    return failures != 0;
}
