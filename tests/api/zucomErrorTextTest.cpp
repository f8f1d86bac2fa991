#include <zucom/zucomErrorText.h>

#include <map>
#include <string>

#include <gtest/gtest.h>

#include <zucom/zucom.h>

namespace
{

const struct
{
    int constant;
    int code;
    const char* text;
} rows[] = {
    {ZUCOM_OK, 0, "ZUCOM: OK"},
    {ZUCOM_ERR_PORT_OBJECT, -1000, "ZUCOM: error while creating new port object"},
    {ZUCOM_ERR_PORT_LIST_EMPTY, -1001, "ZUCOM: empty port list"},
    {ZUCOM_ERR_NULL, -1002, "ZUCOM: pointer is NULL"},
    {ZUCOM_ERR_MEMORY, -1003, "ZUCOM: no more memory"},
    {ZUCOM_ERR_HARDWARE, -1004, "ZUCOM: unsupported hardware"},
    {ZUCOM_ERR_PORT_NOT_FOUND, -1005, "ZUCOM: port is not found"},
    {ZUCOM_ERR_UNSUPPORTED, -1006, "ZUCOM: Unsupported function or option"},
    {ZUCOM_ERR_OPEN, -1010, "ZUCOM: error while open port"},
    {ZUCOM_ERR_OPEN_TIMEOUT, -1011, "ZUCOM: port open timeout"},
    {ZUCOM_ERR_PORT_NUMBER, -1012, "ZUCOM: port number is false"},
    {ZUCOM_ERR_ALREADY_OPEN, -1013, "ZUCOM: port is already open"},
    {ZUCOM_ERR_UNKNOWN_HANDLE, -1020, "ZUCOM: unknown port handle"},
    {ZUCOM_ERR_HANDLE_ZERO, -1021, "ZUCOM: port handle is zero"},
    {ZUCOM_ERR_HANDLE_NEGATIVE, -1022, "ZUCOM: port handle is negativ"},
    {ZUCOM_ERR_NO_HANDLE, -1023, "ZUCOM: no port handle found"},
    {ZUCOM_ERR_TIMEOUT, -1030, "ZUCOM: receive timeout"},
    {ZUCOM_ERR_NO_TRANSMIT_FRAME, -1031, "ZUCOM: no transmit protocol"},
    {ZUCOM_ERR_READ, -1032, "ZUCOM: error in read process"},
    {ZUCOM_ERR_NOT_STARTED, -1033, "ZUCOM: communication process not started"},
    {ZUCOM_ERR_FLUSH_INPUT, -1034, "ZUCOM: error in delete input buffer"},
    {ZUCOM_ERR_FLUSH_OUTPUT, -1035, "ZUCOM: error in delete output buffer"},
    {ZUCOM_ERR_CHANGE_PARAMETER, -1036, "ZUCOM: error in change port parameter"},
    {ZUCOM_ERR_TRANSMIT, -1037, "ZUCOM: error in transmit process"},
    {ZUCOM_ERR_NOISE, -1038, "ZUCOM: noise data received (frame and/or parity is false)"},
    {ZUCOM_ERR_BUSY, -1039, "ZUCOM: Port is busy"},
    {ZUCOM_ERR_READ_PARAMETER, -1040, "ZUCOM: error in read port parameter"},
    {ZUCOM_ERR_NOT_CONNECTED, -1041, "ZUCOM: port not connnected"},
    {ZUCOM_ERR_PROTOCOL_LENGTH, -1042, "ZUCOM: Invalid protocol length"},
    {ZUCOM_ERR_UNKNOWN_PARAMETER, -1050, "ZUCOM: unknown parameter"},
    {ZUCOM_ERR_OUT_OF_RANGE, -1051, "ZUCOM: parameter out of range"},
    {ZUCOM_ERR_ODD_PARAMETER, -1052, "ZUCOM: odd parameterstring"},
    {ZUCOM_ERR_PORT_NUMBER_RANGE, -1053, "ZUCOM: port number out of range"},
    {ZUCOM_ERR_UNKNOWN_COMMAND, -1055, "ZUCOM: unkown port command"},
    {ZUCOM_ERR_RECEIVE_OVERFLOW, -1070, "ZUCOM: receive buffer overflow"},
};

TEST(ErrorText, belongsToTheCodeInEveryLookUp)
{
    std::map<int, std::string> texts;
    for (const auto& row : rows)
    {
        EXPECT_EQ(row.code, row.constant);
        texts[row.code] = row.text;
    }
    for (int code = -1100; code <= 100; ++code)
    {
        const auto found = texts.find(code);
        const std::string expected = found == texts.end() ? "ZUCOM: unknown error code" : found->second;
        char text[ZUCOM_ERROR_TEXT_SIZE];
        EXPECT_EQ(expected, ZucomErrorText::getErrorText(code)) << code;
        EXPECT_EQ(0, ZUCOM_GetErrorText(code, text));
        EXPECT_EQ(expected, text) << code;
    }
}

TEST(ErrorText, isKnownForNoCodeFarAway)
{
    for (const int code : {INT32_MIN, INT32_MIN + 1070, -100000, 100000, INT32_MAX})
        EXPECT_STREQ("ZUCOM: unknown error code", ZucomErrorText::getErrorText(code)) << code;
}

TEST(ErrorText, fitsTheSizeThatTheHeaderNames)
{
    std::size_t longest = 0;
    for (const auto& row : rows)
        longest = std::max(longest, std::string(row.text).size() + 1);
    EXPECT_EQ(std::size_t{ZUCOM_ERROR_TEXT_SIZE}, longest);
}

} // namespace
