// Setting and reading port parameters.

#include <zucom/zucomPort.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <sys/ioctl.h>

#include <zucom/zucom.h>

#include "port/zuCall.h"
#include "port/zuKeyText.h"

namespace
{
struct BaudRate
{
    int rate; // bit/s
    speed_t code;
};

constexpr BaudRate baudRates[] = {
    {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600},
    {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600},
};

constexpr tcflag_t dataBitFlags[] = {CS5, CS6, CS7, CS8};
constexpr int fewestDataBits = 5;
constexpr int mostDataBits = 8;

constexpr int maxTimeout_msec = 99999;
constexpr int maxTxDelay_msec = 999;
constexpr int maxBusAddress = 255;

constexpr uint32_t rs485Delay_msec = 5;

int toNumber(const char* text) { return static_cast<int>(std::strtol(text, nullptr, 10)); }

bool setDataBits(tcflag_t& flags, int dataBits)
{
    if (dataBits < fewestDataBits || dataBits > mostDataBits)
        return false;
    flags = (flags & ~tcflag_t{CSIZE}) | dataBitFlags[dataBits - fewestDataBits];
    return true;
}

bool setParity(tcflag_t& flags, char parity)
{
    switch (parity)
    {
    case 'E':
    case 'e':
        flags = (flags & ~tcflag_t{PARODD}) | PARENB;
        return true;
    case 'O':
    case 'o':
        flags |= PARENB | PARODD;
        return true;
    case 'N':
    case 'n':
        flags &= ~tcflag_t{PARENB};
        return true;
    default:
        return false;
    }
}

bool setStopBits(tcflag_t& flags, int stopBits)
{
    if (stopBits != 1 && stopBits != 2)
        return false;
    flags = stopBits == 2 ? flags | CSTOPB : flags & ~tcflag_t{CSTOPB};
    return true;
}
} // namespace

// A parameter: its key, how it is set and how it is read. Setting checks and stores the value and, where the line must
// know, applies it; reading writes the value's text, whose length the caller's buffer was promised for.
struct ZuSetting
{
    const char* key;
    bool anyCase; // whether the key matches in any letter case
    int (*set)(ZucomPort&, const ZuCall&, const char* value);
    void (*get)(const ZucomPort&, char* value);

    static const ZuSetting* find(const char* key, std::string_view upperKey);

    static int setDevicePath(ZucomPort& port, const ZuCall& call, const char* value)
    try
    {
        port.devicePath = value;
        return ZUCOM_OK;
    }
    catch (const std::bad_alloc&)
    {
        return call.failSilently(ZUCOM_ERR_MEMORY);
    }

    static void devicePathText(const ZucomPort& port, char* value)
    {
        std::memcpy(value, port.devicePath.c_str(), port.devicePath.size() + 1);
    }

    static int setOpMode(ZucomPort& port, const ZuCall& call, const char* value)
    {
        port.rs485Config = {};
        if (std::strcmp(value, "RS232") == 0)
        {
            port.opMode = "RS232";
            call.note(491, "Enable RS232");
            if (::ioctl(port.fileDescriptor, TIOCSRS485, &port.rs485Config) < 0)
                return call.failWith(496, ZUCOM_ERR_CHANGE_PARAMETER, "IOCTL: ", ZuErrno{errno});
            return ZUCOM_OK;
        }
        if (std::strcmp(value, "RS485") == 0)
        {
            port.opMode = "RS485";
            port.rs485Config.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
            port.rs485Config.delay_rts_before_send = rs485Delay_msec;
            port.rs485Config.delay_rts_after_send = rs485Delay_msec;
            call.note(518, "Enable RS485");
            if (::ioctl(port.fileDescriptor, TIOCSRS485, &port.rs485Config) < 0)
                return call.fail(522, ZUCOM_ERR_CHANGE_PARAMETER);
            return ZUCOM_OK;
        }
        return call.fail(529, ZUCOM_ERR_OUT_OF_RANGE);
    }

    static void opModeText(const ZucomPort& port, char* value)
    {
        std::memcpy(value, port.opMode.c_str(), port.opMode.size() + 1);
    }

    static int setBusAddress(ZucomPort& port, const ZuCall& call, const char* value)
    {
        const int address = toNumber(value);
        if (address < 0 || address > maxBusAddress)
            return call.fail(544, ZUCOM_ERR_OUT_OF_RANGE);
        port.protQueue.busAddrFilter = static_cast<uint8_t>(address);
        port.busAddress = address;
        return ZUCOM_OK;
    }

    static void busAddressText(const ZucomPort& port, char* value) { std::sprintf(value, "%d", port.busAddress); }

    static int setBaud(ZucomPort& port, const ZuCall& call, const char* value)
    {
        const auto* rate = std::find_if(std::begin(baudRates), std::end(baudRates),
                                        [wanted = toNumber(value)](const BaudRate& r) { return r.rate == wanted; });
        if (rate == std::end(baudRates))
            return call.fail(583, ZUCOM_ERR_OUT_OF_RANGE);
        port.baud = rate->code;
        termios settings = port.newSettings;
        ::cfsetispeed(&settings, port.baud);
        ::cfsetospeed(&settings, port.baud);
        return apply(port, call, settings, 593);
    }

    // What the line was last told; 9600 before it was told anything.
    static void baudText(const ZucomPort& port, char* value)
    {
        const auto* rate =
            std::find_if(std::begin(baudRates), std::end(baudRates),
                         [code = ::cfgetospeed(&port.newSettings)](const BaudRate& r) { return r.code == code; });
        std::sprintf(value, "%d", rate != std::end(baudRates) ? rate->rate : 9600);
    }

    static int setFrame(ZucomPort& port, const ZuCall& call, const char* value)
    {
        int dataBits = 0;
        char parity = '\0';
        int stopBits = 0;
        std::sscanf(value, "%d%c%d", &dataBits, &parity, &stopBits); // NOLINT(cert-err34-c): what is missing is refused

        termios settings = port.newSettings;
        if (!setDataBits(settings.c_cflag, dataBits))
            return call.fail(627, ZUCOM_ERR_OUT_OF_RANGE);
        if (!setParity(settings.c_cflag, parity))
            return call.fail(649, ZUCOM_ERR_OUT_OF_RANGE);
        if (!setStopBits(settings.c_cflag, stopBits))
            return call.fail(661, ZUCOM_ERR_OUT_OF_RANGE);
        return apply(port, call, settings, 669);
    }

    static void frameText(const ZucomPort& port, char* value)
    {
        const tcflag_t flags = port.newSettings.c_cflag;
        const auto* dataBits = std::find(std::begin(dataBitFlags), std::end(dataBitFlags), flags & CSIZE);
        const char parity = (flags & PARENB) == 0 ? 'N' : (flags & PARODD) != 0 ? 'O' : 'E';
        std::sprintf(value, "%d%c%d", static_cast<int>(dataBits - dataBitFlags) + fewestDataBits, parity,
                     (flags & CSTOPB) != 0 ? 2 : 1);
    }

    static int setTimeout(ZucomPort& port, const ZuCall& call, const char* value)
    {
        const int timeout = toNumber(value);
        if (timeout < 0)
            return call.fail(680, ZUCOM_ERR_OUT_OF_RANGE);
        if (timeout > maxTimeout_msec)
            return call.fail(687, ZUCOM_ERR_OUT_OF_RANGE);
        port.timeout_usec = int64_t{timeout} * 1000;
        return ZUCOM_OK;
    }

    static void timeoutText(const ZucomPort& port, char* value)
    {
        std::sprintf(value, "%ld", long{port.timeout_usec / 1000});
    }

    static int setTxDelay(ZucomPort& port, const ZuCall& call, const char* value)
    {
        const int delay = toNumber(value);
        if (delay < 0 || delay > maxTxDelay_msec)
            return call.fail(700, ZUCOM_ERR_OUT_OF_RANGE);
        port.txDelayTime = static_cast<uint64_t>(delay);
        return ZUCOM_OK;
    }

    static void txDelayText(const ZucomPort& port, char* value) { std::sprintf(value, "%lu", port.txDelayTime); }

    static void errorCodeText(const ZucomPort& port, char* value) { std::sprintf(value, "%d", port.lastError); }

private:
    // The port keeps new settings only when the device took them.
    static int apply(ZucomPort& port, const ZuCall& call, const termios& settings, int failTag)
    {
        if (::tcsetattr(port.fileDescriptor, TCSANOW, &settings) != 0)
            return call.fail(failTag, ZUCOM_ERR_CHANGE_PARAMETER);
        port.newSettings = settings;
        return ZUCOM_OK;
    }
};

namespace
{
constexpr ZuSetting settings[] = {
    // key         any case  set                      get
    {"DEVICEPATH", true, ZuSetting::setDevicePath, ZuSetting::devicePathText},
    {"OPMODE", true, ZuSetting::setOpMode, ZuSetting::opModeText},
    {"BUSADDRESS", true, ZuSetting::setBusAddress, ZuSetting::busAddressText},
    {"BAUD", true, ZuSetting::setBaud, ZuSetting::baudText},               // bit/s
    {"FRAME", true, ZuSetting::setFrame, ZuSetting::frameText},            // data bits, parity, stop bits
    {"TIMEOUT", true, ZuSetting::setTimeout, ZuSetting::timeoutText},      // ms outside, µs inside
    {"TXDELAYTIME", false, ZuSetting::setTxDelay, ZuSetting::txDelayText}, // ms
    {"ERRCODE", true, nullptr, ZuSetting::errorCodeText},                  // read only
};
} // namespace

const ZuSetting* ZuSetting::find(const char* key, std::string_view upperKey)
{
    const auto* found = std::find_if(std::begin(settings), std::end(settings),
                                     [&](const ZuSetting& setting)
                                     { return (setting.anyCase ? upperKey : std::string_view(key)) == setting.key; });
    return found != std::end(settings) ? found : nullptr;
}

int ZucomPort::setPortPara(const char* key, const char* value)
{
    const ZuCall call(*this, "int ZucomPort::setPortPara(const char*, const char*)");
    call.trace(455, "Setting port parameter");
    if (key == nullptr || value == nullptr)
        return call.fail(460, ZUCOM_ERR_NULL);
    if (!fitsKey(key))
        return call.fail(468, ZUCOM_ERR_ODD_PARAMETER);
    const ZuKeyText keyText(key);
    call.trace(473, "Parameter: ", keyText.upper(), " Value: ", value);

    const ZuSetting* setting = ZuSetting::find(key, keyText.upper());
    if (setting == nullptr || setting->set == nullptr)
        return call.fail(710, ZUCOM_ERR_UNKNOWN_PARAMETER, ": ", key);
    return setting->set(*this, call, value);
}

int ZucomPort::getPortPara(const char* key, char* value)
{
    const ZuCall call(*this, "int ZucomPort::getPortPara(const char*, char*)");
    call.trace(721, "Getting port parameter");
    if (key == nullptr || value == nullptr)
        return call.fail(726, ZUCOM_ERR_NULL);
    if (!fitsKey(key))
        return call.fail(734, ZUCOM_ERR_ODD_PARAMETER);
    const ZuKeyText keyText(key);
    call.trace(741, "Parameter: ", keyText.upper());

    const ZuSetting* setting = ZuSetting::find(key, keyText.upper());
    if (setting == nullptr)
        return call.fail(809, ZUCOM_ERR_UNKNOWN_PARAMETER, ": ", key);
    setting->get(*this, value);
    call.trace(811, "Value: ", value);
    return ZUCOM_OK;
}
