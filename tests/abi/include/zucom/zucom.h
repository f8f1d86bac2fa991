/**
 * @file
 * The port functions of libzucom: open a serial device, set the line, exchange frames with a reader.
 *
 * The header compiles as C99 and as C++. A program opens a device with ZUCOM_OpenPort(), hands the port
 * handle to every further call and gives it back with ZUCOM_ClosePort().
 *
 * **Results.** Except for ZUCOM_GetDLLVersion() every function returns an `int`: zero or more is success,
 * a negative value is one of the `ZUCOM_ERR_…` codes (or -1, see ZUCOM_Receive()).
 *
 * **Last errors.** Each port keeps the code of its last failed operation, the library keeps one more for
 * failures without a port. Success does not clear either (ZUCOM_GetPortList() apart).
 *
 * **Threads.** Calls on different ports are independent and may run at the same time. Calls on one port are
 * the caller's to serialise, and a handle must not be closed while another thread is inside a call with it.
 */
#ifndef ZUCOM_H
#define ZUCOM_H

#include <stddef.h>
#include <stdint.h>

#include <zucom/zucomExport.h>

#ifdef __cplusplus
extern "C"
{
#endif

    /** Result codes; ZUCOM_GetErrorText() gives the text of each. */
    enum
    {
        ZUCOM_OK = 0,                        /**< success */
        ZUCOM_ERR_PORT_OBJECT = -1000,       /**< the port object was not created, or the device did not open */
        ZUCOM_ERR_PORT_LIST_EMPTY = -1001,   /**< no port is open */
        ZUCOM_ERR_NULL = -1002,              /**< a pointer is null */
        ZUCOM_ERR_MEMORY = -1003,            /**< no memory for a buffer of the wanted size */
        ZUCOM_ERR_HARDWARE = -1004,          /**< unsupported hardware; kept for callers, never returned */
        ZUCOM_ERR_PORT_NOT_FOUND = -1005,    /**< port not found; kept for callers, never returned */
        ZUCOM_ERR_UNSUPPORTED = -1006,       /**< the function or option is not supported */
        ZUCOM_ERR_OPEN = -1010,              /**< error while opening; kept for callers, never returned */
        ZUCOM_ERR_OPEN_TIMEOUT = -1011,      /**< time-out while opening; kept for callers, never returned */
        ZUCOM_ERR_PORT_NUMBER = -1012,       /**< false port number; kept for callers, never returned */
        ZUCOM_ERR_ALREADY_OPEN = -1013,      /**< port already open; kept for callers, never returned */
        ZUCOM_ERR_UNKNOWN_HANDLE = -1020,    /**< no port is registered under the handle */
        ZUCOM_ERR_HANDLE_ZERO = -1021,       /**< another thread removed the handle during the call */
        ZUCOM_ERR_HANDLE_NEGATIVE = -1022,   /**< the handle is negative */
        ZUCOM_ERR_NO_HANDLE = -1023,         /**< no open port has the path; the list of ports has ended */
        ZUCOM_ERR_TIMEOUT = -1030,           /**< nothing was received within TIMEOUT */
        ZUCOM_ERR_NO_TRANSMIT_FRAME = -1031, /**< no frame to transmit; kept for callers, never returned */
        ZUCOM_ERR_READ = -1032,              /**< waiting for the device or reading from it failed */
        ZUCOM_ERR_NOT_STARTED = -1033,       /**< communication not started; kept for callers, never returned */
        ZUCOM_ERR_FLUSH_INPUT = -1034,       /**< the input queue could not be discarded */
        ZUCOM_ERR_FLUSH_OUTPUT = -1035,      /**< the output queue could not be discarded */
        ZUCOM_ERR_CHANGE_PARAMETER = -1036,  /**< the device refused the setting */
        ZUCOM_ERR_TRANSMIT = -1037,          /**< writing to the device failed; the port is closed */
        ZUCOM_ERR_NOISE = -1038,             /**< noise data received; kept for callers, never returned */
        ZUCOM_ERR_BUSY = -1039,              /**< port busy; kept for callers, never returned */
        ZUCOM_ERR_READ_PARAMETER = -1040,    /**< the modem lines could not be read */
        ZUCOM_ERR_NOT_CONNECTED = -1041,     /**< the device is not open, or it went away */
        ZUCOM_ERR_PROTOCOL_LENGTH = -1042,   /**< bytes were received, but no whole frame within TIMEOUT */
        ZUCOM_ERR_UNKNOWN_PARAMETER = -1050, /**< no such parameter key */
        ZUCOM_ERR_OUT_OF_RANGE = -1051,      /**< a value, size or text is outside its range */
        ZUCOM_ERR_ODD_PARAMETER = -1052,     /**< the parameter key has 128 characters or more */
        ZUCOM_ERR_PORT_NUMBER_RANGE = -1053, /**< port number out of range; kept for callers, never returned */
        ZUCOM_ERR_UNKNOWN_COMMAND = -1055,   /**< no such port command */
        ZUCOM_ERR_RECEIVE_OVERFLOW = -1070   /**< receive buffer overflow; kept for callers, never returned */
    };

    /** Sizes, in bytes with the terminator, of buffers that take the longest answer. */
    enum
    {
        ZUCOM_ERROR_TEXT_SIZE = 58,   /**< the text of any code */
        ZUCOM_VALUE_SIZE = 12,        /**< any parameter but DEVICEPATH, which needs its own length and one */
        ZUCOM_COMMAND_VALUE_SIZE = 4, /**< the answer of a GET… port command, "ON" or "OFF" */
        ZUCOM_KEY_LIMIT = 128         /**< keys, command names and command values must be shorter than this */
    };

    /**
     * Tells the version of the library.
     *
     * @return "04.00.00"; the text stays valid while the library is loaded and is not to be changed or freed.
     * @note Any thread may call this at any time.
     */
    ZUCOM_API const char* ZUCOM_GetDLLVersion(void);

    /**
     * Turns a result code into its text.
     *
     * @param code  Any value; one without a text of its own gives "ZUCOM: unknown error code".
     * @param text  Receives the text with its terminator; at least ZUCOM_ERROR_TEXT_SIZE bytes, owned by the caller.
     * @return 0, or ZUCOM_ERR_NULL for a null @p text, which is then also the library's last error.
     * @note Any thread may call this at any time.
     */
    ZUCOM_API int ZUCOM_GetErrorText(int code, char* text);

    /**
     * Tells the last error of a port or of the library, with its text. Reading does not clear it.
     *
     * @param handle  Port handle, or 0 for the library's own last error.
     * @param code    Receives the code.
     * @param text    Receives the text with its terminator; at least ZUCOM_ERROR_TEXT_SIZE bytes, owned by the caller.
     * @return 0, or a negative code, which is then also the library's last error; nothing is written then:
     * @retval ZUCOM_ERR_NULL            @p code or @p text is null
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE  no such port
     * @note The library's last error is one for all threads: when several fail at once, the last one stays.
     */
    ZUCOM_API int ZUCOM_GetLastError(int handle, int* code, char* text);

    /**
     * Opens a serial device for exclusive use and sets it to raw mode, 9600 bit/s, 8 data bits, even parity, 1 stop
     * bit.
     *
     * The settings that the device had, RS485 included, come back when the port is closed.
     *
     * @param devicePath  Path of the device node, for example "/dev/ttyUSB0"; copied.
     * @return Port handle, 1 or more, or a negative code, which is then also the library's last error:
     * @retval ZUCOM_ERR_NULL         @p devicePath is null
     * @retval ZUCOM_ERR_PORT_OBJECT  the device does not open, is no terminal, refuses the settings or exclusive use
     * @note Any thread may open ports at any time. Handles are not given out again (before 2^28 ports were opened).
     */
    ZUCOM_API int ZUCOM_OpenPort(const char* devicePath);

    /**
     * Restores the device's earlier settings, closes it and ends the port.
     *
     * @param handle  Port from ZUCOM_OpenPort(); not valid afterwards, also when the device had failed before.
     * @return 0, or a negative code:
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE  no such port; also the library's last error
     * @retval ZUCOM_ERR_HANDLE_ZERO     another thread closed the same handle meanwhile
     * @note No other thread may be inside a call with this handle.
     */
    ZUCOM_API int ZUCOM_ClosePort(int handle);

    /**
     * Walks the registered ports in ascending order of their handles.
     *
     * @param handle  0 for the first port, then the handle that the previous call returned.
     * @return The next handle, and the library's last error becomes 0; or a negative code, which becomes it:
     * @retval ZUCOM_ERR_HANDLE_NEGATIVE  @p handle is negative
     * @retval ZUCOM_ERR_PORT_LIST_EMPTY  no port is registered
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE   @p handle names no registered port
     * @retval ZUCOM_ERR_NO_HANDLE        @p handle was the last one
     * @note Any thread may call this at any time.
     */
    ZUCOM_API int ZUCOM_GetPortList(int handle);

    /**
     * Reads a setting of a port as text. The device is not asked.
     *
     * Keys, in any letter case except TXDELAYTIME: DEVICEPATH, OPMODE ("RS232" or "RS485"), BUSADDRESS (0 to 255),
     * BAUD (bit/s in force), FRAME (for example "8E1"), TIMEOUT (ms), TXDELAYTIME (ms), ERRCODE (the port's last
     * error).
     *
     * @param handle  Port from ZUCOM_OpenPort().
     * @param key     Key, shorter than ZUCOM_KEY_LIMIT characters.
     * @param value   Receives the value with its terminator; at least ZUCOM_VALUE_SIZE bytes, for DEVICEPATH the length
     *                of the path and one; owned by the caller, not written on failure.
     * @return 0, or a negative code, which is then also the port's last error (for the unknown handle: the library's):
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE     no such port
     * @retval ZUCOM_ERR_NULL               @p key or @p value is null
     * @retval ZUCOM_ERR_ODD_PARAMETER      the key is too long
     * @retval ZUCOM_ERR_UNKNOWN_PARAMETER  no such key
     * @note Calls on one port are the caller's to serialise.
     */
    ZUCOM_API int ZUCOM_GetPortPara(int handle, const char* key, char* value);

    /**
     * Changes a setting of a port.
     *
     * | Key         | Value                                                                          | Takes effect |
     * |-------------|--------------------------------------------------------------------------------|--------------|
     * | DEVICEPATH  | any text                                                                       | stored only  |
     * | OPMODE      | "RS232" or "RS485", exactly                                                    | at once      |
     * | BUSADDRESS  | 0 to 255; 255 receives from every address                                      | next receive |
     * | BAUD        | 4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800 or 921600 bit/s        | at once      |
     * | FRAME       | data bits 5 to 8, parity E, O or N, stop bits 1 or 2, for example "8N1"        | at once      |
     * | TIMEOUT     | 0 to 99999 ms, the longest silence that a receive waits through                | next receive |
     * | TXDELAYTIME | 0 to 999 ms between a frame received and the next transmission                 | next transmit |
     *
     * Keys match in any letter case, except TXDELAYTIME. Numbers are read as `strtol` reads them: "12abc" is 12,
     * a text without digits is 0.
     *
     * @param handle  Port from ZUCOM_OpenPort().
     * @param key     Key, shorter than ZUCOM_KEY_LIMIT characters.
     * @param value   New value; copied where it is kept.
     * @return 0, or a negative code, which is then also the port's last error (for the unknown handle: the library's):
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE     no such port
     * @retval ZUCOM_ERR_NULL               @p key or @p value is null
     * @retval ZUCOM_ERR_ODD_PARAMETER      the key is too long
     * @retval ZUCOM_ERR_UNKNOWN_PARAMETER  no such key
     * @retval ZUCOM_ERR_OUT_OF_RANGE       the value is not one of those above; nothing changes
     * @retval ZUCOM_ERR_CHANGE_PARAMETER   the device refused; BAUD and FRAME stay, OPMODE already reads the new mode
     * @retval ZUCOM_ERR_MEMORY             no memory for a copy of the device path; nothing changes
     * @note Calls on one port are the caller's to serialise.
     */
    ZUCOM_API int ZUCOM_SetPortPara(int handle, const char* key, const char* value);

    /**
     * Runs a command on the driver's queues or on the modem lines of a port.
     *
     * Commands, in any letter case: FLUSHINQ and FLUSHOUTQ discard what waits in the driver; SETDTR and SETRTS raise
     * the line for "ON" (any letter case) and lower it for every other value; GETDTR, GETRTS, GETCTS, GETDCD and
     * GETDSR answer "ON" or "OFF".
     *
     * @param handle   Port from ZUCOM_OpenPort().
     * @param command  Command name, shorter than ZUCOM_KEY_LIMIT characters.
     * @param value    Text shorter than ZUCOM_KEY_LIMIT characters, needed by every command; for the GET… commands it
     * is also the answer's buffer of at least ZUCOM_COMMAND_VALUE_SIZE bytes. Not written on failure.
     * @return 0, or a negative code, which is then also the port's last error (for the unknown handle: the library's):
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE    no such port
     * @retval ZUCOM_ERR_NULL              @p command or @p value is null
     * @retval ZUCOM_ERR_OUT_OF_RANGE      @p command or @p value is too long
     * @retval ZUCOM_ERR_UNKNOWN_COMMAND   no such command
     * @retval ZUCOM_ERR_FLUSH_INPUT       the driver did not discard what was received
     * @retval ZUCOM_ERR_FLUSH_OUTPUT      the driver did not discard what was written
     * @retval ZUCOM_ERR_CHANGE_PARAMETER  the line could not be set, or OPMODE is RS485 (the driver switches RTS then)
     * @retval ZUCOM_ERR_READ_PARAMETER    the lines could not be read
     * @note Calls on one port are the caller's to serialise.
     */
    ZUCOM_API int ZUCOM_DoPortCmd(int handle, const char* command, char* value);

    /**
     * Finds the port that was opened with a path.
     *
     * @param devicePath  The path, byte for byte as it was given to ZUCOM_OpenPort().
     * @return The smallest handle opened with it, or a negative code, which is then also the library's last error:
     * @retval ZUCOM_ERR_NULL       @p devicePath is null
     * @retval ZUCOM_ERR_NO_HANDLE  no registered port was opened with it
     * @note Any thread may call this at any time.
     */
    ZUCOM_API int ZUCOM_GetPortHnd(const char* devicePath);

    /**
     * Sends bytes, as a rule one frame, in one piece and unchanged.
     *
     * Waits first until TXDELAYTIME ms have passed since this port last received a frame. Does not wait until the
     * bytes have left the line.
     *
     * @param handle  Port from ZUCOM_OpenPort().
     * @param data    @p len readable bytes; may be null when @p len is 0.
     * @param len     Number of bytes.
     * @return Number of bytes that the driver took, which can be fewer than @p len; or a negative code, which is then
     *         also the port's and the library's last error:
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE  no such port (the library's last error only)
     * @retval ZUCOM_ERR_NULL            @p data is null and @p len is not 0
     * @retval ZUCOM_ERR_NOT_CONNECTED   the device is not open (any more)
     * @retval ZUCOM_ERR_TRANSMIT        writing failed; the device is closed, the handle stays until ZUCOM_ClosePort()
     * @note Calls on one port are the caller's to serialise.
     */
    ZUCOM_API int ZUCOM_Transmit(int handle, const uint8_t* data, size_t len);

    /**
     * Waits for one frame from the reader and stores it whole.
     *
     * The wait is the port's TIMEOUT in milliseconds, counted afresh after every piece that arrives. Frames for another
     * bus address than BUSADDRESS are dropped. What an earlier call left unread is discarded first; bytes that wait in
     * the driver are not.
     *
     * @param handle  Port from ZUCOM_OpenPort().
     * @param buffer  Receives the frame; owned by the caller.
     * @param size    Size of @p buffer in bytes, 1 or more; no frame is longer than 65535.
     * @return Length of the frame in bytes; or a negative code, which is then also the port's and the library's last
     *         error:
     * @retval ZUCOM_ERR_UNKNOWN_HANDLE   no such port (the library's last error only)
     * @retval ZUCOM_ERR_NULL             @p buffer is null
     * @retval ZUCOM_ERR_OUT_OF_RANGE     @p size is 0
     * @retval ZUCOM_ERR_MEMORY           @p size is more than memory can hold
     * @retval ZUCOM_ERR_NOT_CONNECTED    the device is not open, or it went away and has been closed
     * @retval ZUCOM_ERR_READ             waiting failed (a signal included); or reading failed and the device is closed
     * @retval ZUCOM_ERR_TIMEOUT          nothing arrived in time
     * @retval ZUCOM_ERR_PROTOCOL_LENGTH  bytes arrived, but no whole frame for this bus address
     * @retval -1                         no known kind of frame, or one longer than @p size; not the port's last error
     * @note Calls on one port are the caller's to serialise; calls on different ports are independent.
     */
    ZUCOM_API int ZUCOM_Receive(int handle, uint8_t* buffer, size_t size);

    /**
     * Not supported on this platform; the argument is not looked at.
     *
     * @param devicePath  Not read.
     * @return ZUCOM_ERR_UNSUPPORTED, which is then also the library's last error.
     */
    ZUCOM_API int ZUCOM_DetectPort(const char* devicePath);

    /**
     * Not supported on this platform; the arguments are not looked at.
     *
     * @param handle        Not read.
     * @param eventHandler  Not read.
     * @return ZUCOM_ERR_UNSUPPORTED, which is then also the library's last error.
     */
    ZUCOM_API int ZUCOM_AddEventHandler(int handle, void* eventHandler);

    /**
     * Not supported on this platform; the arguments are not looked at.
     *
     * @param handle        Not read.
     * @param eventHandler  Not read.
     * @return ZUCOM_ERR_UNSUPPORTED, which is then also the library's last error.
     */
    ZUCOM_API int ZUCOM_DelEventHandler(int handle, void* eventHandler);

    /**
     * Not supported on this platform; the arguments are not looked at. Use ZUCOM_Transmit() and ZUCOM_Receive().
     *
     * @param handle  Not read.
     * @param data    Not read.
     * @param len     Not read.
     * @param buffer  Not read.
     * @param size    Not read.
     * @return ZUCOM_ERR_UNSUPPORTED, which is then also the library's last error.
     */
    ZUCOM_API int ZUCOM_Transceive(int handle, const uint8_t* data, size_t len, uint8_t* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
