// What the library's codes mean for somebody whose reader does not answer, and what to do.
#include "tools/common/codeAdvice.h"

#include <zucom/zucom.h>
#include <zucom/zucomErrorText.h>

namespace
{

constexpr const char* neverReturned = "The library keeps this code for callers; no function returns it.";
constexpr const char* nothingToDo = "Nothing: if a program shows it, the program itself made it up.";
constexpr const char* fixProgram = "Correct the calling program; the description of the function is in zucom.h.";

constexpr CodeAdvice advices[] = {
    {ZUCOM_OK, "The call succeeded.", "Nothing."},
    {-1, "Bytes arrived that begin no known kind of frame, or a frame longer than the caller's buffer.",
     "Give ZUCOM_Receive a larger buffer, or look for a wrong speed or frame: zucom scan DEVICE"},
    {ZUCOM_ERR_PORT_OBJECT, "The device did not open: no such node, no rights, in use, or no serial line.",
     "Ask for the reason: zucom doctor DEVICE"},
    {ZUCOM_ERR_PORT_LIST_EMPTY, "No port is open.", "Open one with ZUCOM_OpenPort first."},
    {ZUCOM_ERR_NULL, "A pointer that must not be null is null.", fixProgram},
    {ZUCOM_ERR_MEMORY, "There is no memory for a buffer of the wanted size.", "Ask for a smaller one."},
    {ZUCOM_ERR_HARDWARE, neverReturned, nothingToDo},
    {ZUCOM_ERR_PORT_NOT_FOUND, neverReturned, nothingToDo},
    {ZUCOM_ERR_UNSUPPORTED, "The function does not exist on this platform.",
     "Use ZUCOM_Transmit and ZUCOM_Receive for an exchange; see zucom.h for the others."},
    {ZUCOM_ERR_OPEN, neverReturned, nothingToDo},
    {ZUCOM_ERR_OPEN_TIMEOUT, neverReturned, nothingToDo},
    {ZUCOM_ERR_PORT_NUMBER, neverReturned, nothingToDo},
    {ZUCOM_ERR_ALREADY_OPEN, neverReturned, nothingToDo},
    {ZUCOM_ERR_UNKNOWN_HANDLE, "No port is registered under this handle: never opened, or closed already.",
     "Keep the handle that ZUCOM_OpenPort returned, and do not use it after ZUCOM_ClosePort."},
    {ZUCOM_ERR_HANDLE_ZERO, "Another thread closed the port during the call.",
     "Do not close a port while another thread uses it."},
    {ZUCOM_ERR_HANDLE_NEGATIVE, "The handle is negative: probably the result of an open that failed.",
     "Test the result of ZUCOM_OpenPort before using it."},
    {ZUCOM_ERR_NO_HANDLE, "No open port has this path, or the list of ports has ended.",
     "Give the path byte for byte as it was given to ZUCOM_OpenPort."},
    {ZUCOM_ERR_TIMEOUT, "Not one byte came within TIMEOUT: the reader is silent.",
     "Check power and wiring (TX and RX crossed, RS485 A and B), then speed, frame and address: zucom scan DEVICE"},
    {ZUCOM_ERR_NO_TRANSMIT_FRAME, neverReturned, nothingToDo},
    {ZUCOM_ERR_READ, "Waiting for the device or reading from it failed; a signal interrupts the wait too.",
     "Receive again after a signal; else ask: zucom doctor DEVICE"},
    {ZUCOM_ERR_NOT_STARTED, neverReturned, nothingToDo},
    {ZUCOM_ERR_FLUSH_INPUT, "The driver did not discard its input: the port is closed, or the device is gone.",
     "Close the port and open it again; then: zucom doctor DEVICE"},
    {ZUCOM_ERR_FLUSH_OUTPUT, "The driver did not discard its output: the port is closed, or the device is gone.",
     "Close the port and open it again; then: zucom doctor DEVICE"},
    {ZUCOM_ERR_CHANGE_PARAMETER,
     "The device refused a setting. Pseudo-terminals refuse parity and what changes nothing; many drivers know no "
     "RS485; in RS485 mode the driver owns DTR and RTS.",
     "See what the driver takes: zucom doctor DEVICE"},
    {ZUCOM_ERR_TRANSMIT, "Writing failed and the library closed the device: as a rule it was unplugged.",
     "Close the port and open it again; look at the cable and at: dmesg | tail"},
    {ZUCOM_ERR_NOISE, neverReturned, nothingToDo},
    {ZUCOM_ERR_BUSY, neverReturned, nothingToDo},
    {ZUCOM_ERR_READ_PARAMETER, "The modem lines could not be read: this device has none.",
     "Do without GETCTS, GETDSR and the like on this device; see: zucom doctor --modem-lines DEVICE"},
    {ZUCOM_ERR_NOT_CONNECTED, "The device is not open any more: it was unplugged, or an earlier failure closed it.",
     "Close the port and open it again; find the device's present name: zucom list"},
    {ZUCOM_ERR_PROTOCOL_LENGTH,
     "Bytes came, but no whole frame for this bus address: a byte was lost, speed or frame "
     "are nearly right, or another reader answered.",
     "Set BUSADDRESS to 255 to hear every reader; then: zucom scan DEVICE"},
    {ZUCOM_ERR_UNKNOWN_PARAMETER, "There is no parameter of this name; TXDELAYTIME must be written in capitals.",
     fixProgram},
    {ZUCOM_ERR_OUT_OF_RANGE, "A value, size or text is outside its range; BAUD and FRAME take listed values only.",
     fixProgram},
    {ZUCOM_ERR_ODD_PARAMETER, "The name of the parameter has 128 characters or more.", fixProgram},
    {ZUCOM_ERR_PORT_NUMBER_RANGE, neverReturned, nothingToDo},
    {ZUCOM_ERR_UNKNOWN_COMMAND, "There is no port command of this name.", fixProgram},
    {ZUCOM_ERR_RECEIVE_OVERFLOW, neverReturned, nothingToDo},
};

} // namespace

std::span<const CodeAdvice> allCodeAdvice() { return advices; }

const CodeAdvice* adviceForCode(int code)
{
    for (const CodeAdvice& advice : advices)
        if (advice.code == code)
            return &advice;
    return nullptr;
}

const CodeAdvice* adviceForText(std::string_view message)
{
    if (!message.starts_with("ZUCOM: "))
        return nullptr;
    for (const CodeAdvice& advice : advices)
        if (advice.code < -1 && message.starts_with(ZucomErrorText::getErrorText(advice.code)))
            return &advice;
    return nullptr;
}
