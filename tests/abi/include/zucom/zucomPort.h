/**
 * @file
 * One serial device as the library sees it.
 */
#ifndef ZUCOM_PORT_H
#define ZUCOM_PORT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <linux/serial.h>
#include <termios.h>

#include <zucom/zuProtQueue.h>
#include <zucom/zucomExport.h>
#include <zucom/zucomLogger.h>

class ZuCall;

/**
 * Converts a text to upper case in place, byte by byte with `toupper` of the current locale.
 *
 * @param text  NUL-terminated text.
 */
ZUCOM_API void strtoup(char* text);

/**
 * A port: the device, its settings, its receive queue, its logger and its last error.
 *
 * The ZUCOM_… functions of <zucom/zucom.h> reach the ports by handle; their descriptions there hold for the operations
 * of the same name here, which write the port's last error only. Calls on one object are the caller's to serialise;
 * different objects are independent.
 */
class ZUCOM_API ZucomPort
{
public:
    /**
     * Takes the next handle, creates the logger and sets every setting to its default. The device is not touched.
     *
     * @param devicePath  Path of the device node; copied. Null is taken as empty.
     */
    explicit ZucomPort(const char* devicePath);
    ZucomPort(const ZucomPort&) = delete;
    ZucomPort& operator=(const ZucomPort&) = delete;
    /** Releases logger and queue. Does not close the device: call closePort() first. */
    ~ZucomPort();

    /** Opens and sets up the device, see ZUCOM_OpenPort(). @return 0, or ZUCOM_ERR_PORT_OBJECT. */
    int openPort();
    /** Restores the device's earlier settings and closes it. @return 0 in every case. */
    int closePort();
    /** Sends bytes, see ZUCOM_Transmit(). @param data Bytes. @param len Their number. @return Count sent, or a code. */
    int transmit(const uint8_t* data, std::size_t len);
    /** Waits for a frame, see ZUCOM_Receive(). @param buf Buffer. @param size Its size. @return Length, or a code. */
    int receive(uint8_t* buf, std::size_t size);
    /** Runs a command, see ZUCOM_DoPortCmd(). @param command Its name. @param value Text. @return 0, or a code. */
    int doPortCmd(const char* command, char* value);
    /** Changes a setting, see ZUCOM_SetPortPara(). @param key Its key. @param value Text. @return 0, or a code. */
    int setPortPara(const char* key, const char* value);
    /** Reads a setting, see ZUCOM_GetPortPara(). @param key Its key. @param value Buffer. @return 0, or a code. */
    int getPortPara(const char* key, char* value);

    /** @return The next port handle: 1, 2, 3 and so on, 28 bits wide. Any thread may call this at any time. */
    static int nextPortHandle();

private:
    friend class ZucomPortHandler; // registers ports by handle and path, reads their last error
    friend class ZuCall;           // writes an operation's log lines and the last error
    friend struct ZuSetting;       // the parameters, one short function each
    friend struct ZuCommand;       // the port commands, likewise

    ZUCOM_LOCAL int prepareDevice(const ZuCall& call);
    ZUCOM_LOCAL void buildRawSettings(const ZuCall& call);
    ZUCOM_LOCAL void waitForGap() const;
    ZUCOM_LOCAL int waitForFrame(const ZuCall& call, uint8_t* buf, std::size_t size);
    ZUCOM_LOCAL int timeOut(const ZuCall& call);
    ZUCOM_LOCAL int deviceLost(const ZuCall& call, int code);
    ZUCOM_LOCAL int frameReceived(const ZuCall& call, const uint8_t* frame, int64_t length);

    std::unique_ptr<ZucomLogger> logger;
    int32_t portHandle;
    std::string devicePath;
    int32_t fileDescriptor = -1;
    std::string opMode = "RS232";
    int32_t lastError = 0;
    int32_t busAddress = 255;
    speed_t baud = B9600;
    int64_t timeout_usec = 1000000;
    uint64_t txDelayTime = 5;     // ms
    uint64_t lastReceiveTime = 0; // ms since the epoch
    termios oldSettings{};
    termios newSettings{};
    serial_rs485 savedRs485{};
    serial_rs485 rs485Config{};
    ZuProtQueue protQueue;
    const std::string openedPath; // what look-ups by path compare; DEVICEPATH can change, this cannot
};

#endif
