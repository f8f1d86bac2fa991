#include <zucom/zucom.h>

#include <cerrno>
#include <functional>

#include "tests/api/apiTest.h"

namespace
{

using Calls = std::vector<std::string>;

uint8_t buffer[64];
char text[ZUCOM_ERROR_TEXT_SIZE];
int code;

const int errorAtLoad = lastError(0);

const struct
{
    const char* name;
    int (*call)(int handle);
} byHandle[] = {
    {"ClosePort", [](int handle) { return ZUCOM_ClosePort(handle); }},
    {"GetPortPara", [](int handle) { return ZUCOM_GetPortPara(handle, "BAUD", text); }},
    {"SetPortPara", [](int handle) { return ZUCOM_SetPortPara(handle, "BAUD", "9600"); }},
    {"DoPortCmd", [](int handle) { return ZUCOM_DoPortCmd(handle, "FLUSHINQ", text); }},
    {"Transmit", [](int handle) { return ZUCOM_Transmit(handle, buffer, 1); }},
    {"Receive", [](int handle) { return ZUCOM_Receive(handle, buffer, sizeof buffer); }},
    {"GetLastError", [](int handle) { return ZUCOM_GetLastError(handle, &code, text); }},
};

TEST(Library, startsWithoutAnError)
{
    EXPECT_EQ(0, errorAtLoad);
    EXPECT_STREQ("04.00.00", ZUCOM_GetDLLVersion());
}

TEST_F(ApiTest, knowsNoHandleThatIsNotRegistered)
{
    const int closed = open();
    ASSERT_EQ(0, ZUCOM_ClosePort(closed));
    open();
    device_.take();
    for (const auto& function : byHandle)
        for (const int handle : {0, -1, -5, closed, closed + 100, INT32_MIN, INT32_MAX})
        {
            if (handle == 0 && std::string(function.name) == "GetLastError")
                continue; // the library's own last error
            ZUCOM_DetectPort(nullptr);
            code = 77;
            text[0] = '#';
            EXPECT_EQ(ZUCOM_ERR_UNKNOWN_HANDLE, function.call(handle)) << function.name << ' ' << handle;
            EXPECT_EQ(77, code);
            EXPECT_EQ('#', text[0]);
            EXPECT_EQ(ZUCOM_ERR_UNKNOWN_HANDLE, lastError(0)) << function.name << ' ' << handle;
        }
    EXPECT_EQ(Calls{}, device_.take());
}

TEST_F(ApiTest, answersNullPointersWithACode)
{
    const int handle = open();
    const struct
    {
        const char* name;
        std::function<int()> call;
        bool ofTheLibrary; // whose last error it becomes
    } cases[] = {
        {"GetErrorText", [] { return ZUCOM_GetErrorText(-1020, nullptr); }, true},
        {"GetLastError without code", [&] { return ZUCOM_GetLastError(handle, nullptr, text); }, true},
        {"GetLastError without text", [&] { return ZUCOM_GetLastError(0, &code, nullptr); }, true},
        {"GetLastError, unknown handle", [] { return ZUCOM_GetLastError(-7, nullptr, text); }, true},
        {"OpenPort", [] { return ZUCOM_OpenPort(nullptr); }, true},
        {"GetPortHnd", [] { return ZUCOM_GetPortHnd(nullptr); }, true},
        {"GetPortPara", [&] { return ZUCOM_GetPortPara(handle, "BAUD", nullptr); }, false},
        {"SetPortPara", [&] { return ZUCOM_SetPortPara(handle, nullptr, "9600"); }, false},
        {"DoPortCmd", [&] { return ZUCOM_DoPortCmd(handle, "FLUSHINQ", nullptr); }, false},
    };
    for (const auto& row : cases)
    {
        ZUCOM_DetectPort(nullptr);
        EXPECT_EQ(ZUCOM_ERR_NULL, row.call()) << row.name;
        EXPECT_EQ(row.ofTheLibrary ? ZUCOM_ERR_NULL : ZUCOM_ERR_UNSUPPORTED, lastError(0)) << row.name;
        EXPECT_EQ(row.ofTheLibrary ? 0 : ZUCOM_ERR_NULL, lastError(handle)) << row.name;
    }
    LogCapture::take();
}

TEST_F(ApiTest, supportsNoDetectionEventsOrTransceive)
{
    const int handle = open();
    for (const int any : {handle, 0, -1, 9999})
        for (const std::function<int()>& call :
             std::initializer_list<std::function<int()>>{
                 [] { return ZUCOM_DetectPort(nullptr); }, [] { return ZUCOM_DetectPort("/dev/null"); },
                 [any] { return ZUCOM_AddEventHandler(any, nullptr); },
                 [any] { return ZUCOM_DelEventHandler(any, buffer); },
                 [any] { return ZUCOM_Transceive(any, buffer, 1, buffer, 1); },
                 [any] { return ZUCOM_Transceive(any, nullptr, 1, nullptr, 1); }})
        {
            ZUCOM_GetPortList(-1);
            EXPECT_EQ(ZUCOM_ERR_UNSUPPORTED, call());
            EXPECT_EQ(ZUCOM_ERR_UNSUPPORTED, lastError(0));
        }
    EXPECT_EQ(0, lastError(handle));
}

TEST_F(ApiTest, keepsAPortsFailuresWhereTheyBelong)
{
    const int handle = open();
    ASSERT_EQ(0, ZUCOM_SetPortPara(handle, "TIMEOUT", "0"));
    const struct
    {
        const char* name;
        std::function<int()> call;
        int result;
        int ofPort, ofLibrary; // last errors afterwards, both OK before
    } cases[] = {
        {"transmit", [&] { return ZUCOM_Transmit(handle, nullptr, 1); }, -1002, -1002, -1002},
        {"receive", [&] { return ZUCOM_Receive(handle, buffer, 64); }, -1030, -1030, -1030},
        {"receive, no frame", [&] { return reader_.write({4}), ZUCOM_Receive(handle, buffer, 64); }, -1, -1030, -1},
        {"set", [&] { return ZUCOM_SetPortPara(handle, "BUSADDRESS", "256"); }, -1051, -1051, 0},
        {"get", [&] { return ZUCOM_GetPortPara(handle, "SPEED", text); }, -1050, -1050, 0},
        {"command", [&] { return ZUCOM_DoPortCmd(handle, "FLUSH", text); }, -1055, -1055, 0},
        {"success", [&] { return ZUCOM_Transmit(handle, buffer, 1); }, 1, -1055, 0},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(handle, ZUCOM_GetPortList(0)); // sets the library's to 0
        EXPECT_EQ(row.result, row.call()) << row.name;
        EXPECT_EQ(row.ofLibrary, lastError(0)) << row.name;
        EXPECT_EQ(row.ofPort, lastError(handle)) << row.name;
    }
    LogCapture::take();
}

TEST_F(ApiTest, exchangesFramesThroughTheHandle)
{
    const int handle = open();
    reader_.answers({{5, 255}, {0x52, 0, 0}});
    device_.before("select", 0, [&] { reader_.writeNext(); });
    const uint8_t request[] = {5, 255, 0x52, 1, 2};
    EXPECT_EQ(5, ZUCOM_Transmit(handle, request, sizeof request));
    EXPECT_EQ((Bytes{5, 255, 0x52, 1, 2}), reader_.read(5));
    EXPECT_EQ(5, ZUCOM_Receive(handle, buffer, sizeof buffer));
    EXPECT_EQ((Bytes{5, 255, 0x52, 0, 0}), Bytes(buffer, buffer + 5));
    EXPECT_EQ(0, ZUCOM_SetPortPara(handle, "FRAME", "7O2"));
    EXPECT_EQ(0, ZUCOM_GetPortPara(handle, "FRAME", text));
    EXPECT_STREQ("7O2", text);
    EXPECT_EQ(0, ZUCOM_DoPortCmd(handle, "GETDTR", text));
    EXPECT_STREQ("OFF", text);
    EXPECT_EQ(0, ZUCOM_ClosePort(handle));
    EXPECT_EQ(-1, device_.descriptor());
}

TEST_F(ApiTest, usesUpTheHandleOfAPortThatDoesNotOpen)
{
    const int first = open();
    EXPECT_EQ(ZUCOM_ERR_PORT_OBJECT, ZUCOM_OpenPort("/nowhere/tty"));
    EXPECT_EQ(ZUCOM_ERR_PORT_OBJECT, lastError(0));
    EXPECT_EQ(ZUCOM_ERR_NO_HANDLE, ZUCOM_GetPortHnd("/nowhere/tty"));
    EXPECT_EQ(ZUCOM_ERR_UNKNOWN_HANDLE, ZUCOM_ClosePort(first + 1));
    EXPECT_EQ(ZUCOM_ERR_NULL, ZUCOM_OpenPort(nullptr));
    EXPECT_EQ(first + 2, open());
    LogCapture::take();
}

TEST_F(ApiTest, keepsAPortWhoseDeviceFailedUntilItIsClosed)
{
    const int handle = open();
    device_.fail("write", 1, EIO);
    EXPECT_EQ(ZUCOM_ERR_TRANSMIT, ZUCOM_Transmit(handle, buffer, 1));
    EXPECT_EQ(-1, device_.descriptor());
    EXPECT_EQ(ZUCOM_ERR_NOT_CONNECTED, ZUCOM_Receive(handle, buffer, 1));
    EXPECT_EQ(handle, ZUCOM_GetPortHnd(reader_.path()));
    EXPECT_EQ(0, ZUCOM_ClosePort(handle));
    EXPECT_EQ(ZUCOM_ERR_UNKNOWN_HANDLE, ZUCOM_ClosePort(handle));
    LogCapture::take();
}

TEST_F(ApiTest, listsThePortsInAscendingOrder)
{
    const auto list = [](int handle, int result)
    {
        ZUCOM_DetectPort(nullptr);
        EXPECT_EQ(result, ZUCOM_GetPortList(handle)) << handle;
        EXPECT_EQ(result < 0 ? result : 0, lastError(0)) << handle;
    };
    for (const int handle : {0, 1, INT32_MAX})
        list(handle, ZUCOM_ERR_PORT_LIST_EMPTY);
    list(-5, ZUCOM_ERR_HANDLE_NEGATIVE);
    const int first = open();
    const int middle = open();
    const int last = open();
    EXPECT_EQ(0, ZUCOM_ClosePort(middle));
    list(0, first);
    list(first, last);
    list(last, ZUCOM_ERR_NO_HANDLE);
    list(middle, ZUCOM_ERR_UNKNOWN_HANDLE);
    list(last + 1, ZUCOM_ERR_UNKNOWN_HANDLE);
    list(-1, ZUCOM_ERR_HANDLE_NEGATIVE);
    list(INT32_MIN, ZUCOM_ERR_HANDLE_NEGATIVE);
}

TEST_F(ApiTest, findsAPortByThePathThatItWasOpenedWith)
{
    const std::string path = reader_.path();
    const int first = open();
    open();
    EXPECT_EQ(0, ZUCOM_SetPortPara(first, "DEVICEPATH", "/dev/renamed"));
    ZUCOM_DetectPort(nullptr);
    EXPECT_EQ(first, ZUCOM_GetPortHnd(path.c_str())) << "the smallest handle";
    EXPECT_EQ(ZUCOM_ERR_UNSUPPORTED, lastError(0)) << "success writes nothing";
    for (const std::string& other :
         {std::string("/dev/renamed"), std::string(), path + ' ', "/" + path, path.substr(0, path.size() - 1)})
    {
        ZUCOM_DetectPort(nullptr);
        EXPECT_EQ(ZUCOM_ERR_NO_HANDLE, ZUCOM_GetPortHnd(other.c_str())) << other;
        EXPECT_EQ(ZUCOM_ERR_NO_HANDLE, lastError(0));
    }
}

} // namespace
