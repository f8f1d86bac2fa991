// The texts of result codes, spread over a table by their offset while compiling.

#include <zucom/zucomErrorText.h>

#include <array>
#include <stdexcept>

#include <zucom/zucom.h>

namespace
{
struct CodeText
{
    int code;
    const char* text;
};

constexpr CodeText codeTexts[] = {
    {ZUCOM_ERR_PORT_OBJECT, "ZUCOM: error while creating new port object"},
    {ZUCOM_ERR_PORT_LIST_EMPTY, "ZUCOM: empty port list"},
    {ZUCOM_ERR_NULL, "ZUCOM: pointer is NULL"},
    {ZUCOM_ERR_MEMORY, "ZUCOM: no more memory"},
    {ZUCOM_ERR_HARDWARE, "ZUCOM: unsupported hardware"},
    {ZUCOM_ERR_PORT_NOT_FOUND, "ZUCOM: port is not found"},
    {ZUCOM_ERR_UNSUPPORTED, "ZUCOM: Unsupported function or option"},
    {ZUCOM_ERR_OPEN, "ZUCOM: error while open port"},
    {ZUCOM_ERR_OPEN_TIMEOUT, "ZUCOM: port open timeout"},
    {ZUCOM_ERR_PORT_NUMBER, "ZUCOM: port number is false"},
    {ZUCOM_ERR_ALREADY_OPEN, "ZUCOM: port is already open"},
    {ZUCOM_ERR_UNKNOWN_HANDLE, "ZUCOM: unknown port handle"},
    {ZUCOM_ERR_HANDLE_ZERO, "ZUCOM: port handle is zero"},
    {ZUCOM_ERR_HANDLE_NEGATIVE, "ZUCOM: port handle is negativ"},
    {ZUCOM_ERR_NO_HANDLE, "ZUCOM: no port handle found"},
    {ZUCOM_ERR_TIMEOUT, "ZUCOM: receive timeout"},
    {ZUCOM_ERR_NO_TRANSMIT_FRAME, "ZUCOM: no transmit protocol"},
    {ZUCOM_ERR_READ, "ZUCOM: error in read process"},
    {ZUCOM_ERR_NOT_STARTED, "ZUCOM: communication process not started"},
    {ZUCOM_ERR_FLUSH_INPUT, "ZUCOM: error in delete input buffer"},
    {ZUCOM_ERR_FLUSH_OUTPUT, "ZUCOM: error in delete output buffer"},
    {ZUCOM_ERR_CHANGE_PARAMETER, "ZUCOM: error in change port parameter"},
    {ZUCOM_ERR_TRANSMIT, "ZUCOM: error in transmit process"},
    {ZUCOM_ERR_NOISE, "ZUCOM: noise data received (frame and/or parity is false)"},
    {ZUCOM_ERR_BUSY, "ZUCOM: Port is busy"},
    {ZUCOM_ERR_READ_PARAMETER, "ZUCOM: error in read port parameter"},
    {ZUCOM_ERR_NOT_CONNECTED, "ZUCOM: port not connnected"},
    {ZUCOM_ERR_PROTOCOL_LENGTH, "ZUCOM: Invalid protocol length"},
    {ZUCOM_ERR_UNKNOWN_PARAMETER, "ZUCOM: unknown parameter"},
    {ZUCOM_ERR_OUT_OF_RANGE, "ZUCOM: parameter out of range"},
    {ZUCOM_ERR_ODD_PARAMETER, "ZUCOM: odd parameterstring"},
    {ZUCOM_ERR_PORT_NUMBER_RANGE, "ZUCOM: port number out of range"},
    {ZUCOM_ERR_UNKNOWN_COMMAND, "ZUCOM: unkown port command"},
    {ZUCOM_ERR_RECEIVE_OVERFLOW, "ZUCOM: receive buffer overflow"},
};

constexpr const char* okText = "ZUCOM: OK";
constexpr const char* unknownText = "ZUCOM: unknown error code";

constexpr int lowestCode = ZUCOM_ERR_RECEIVE_OVERFLOW;
constexpr int highestCode = ZUCOM_ERR_PORT_OBJECT;
using TextTable = std::array<const char*, highestCode - lowestCode + 1>;

constexpr TextTable spreadTexts()
{
    TextTable table{};
    for (const CodeText& row : codeTexts)
    {
        const char*& entry = table.at(static_cast<std::size_t>(row.code - lowestCode));
        if (entry != nullptr)
            throw std::logic_error("a code has two texts"); // ends compilation
        entry = row.text;
    }
    for (const char*& entry : table)
        if (entry == nullptr)
            entry = unknownText;
    return table;
}

constexpr TextTable textTable = spreadTexts();
} // namespace

const char* ZucomErrorText::getErrorText(int code)
{
    if (code == ZUCOM_OK)
        return okText;
    if (code < lowestCode || code > highestCode)
        return unknownText;
    return textTable[static_cast<std::size_t>(code - lowestCode)];
}
