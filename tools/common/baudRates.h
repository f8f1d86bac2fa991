// The rates that the library knows, the likeliest first.
#ifndef ZUCOM_TOOLS_BAUD_RATES_H
#define ZUCOM_TOOLS_BAUD_RATES_H

#include <vector>

#include <termios.h>

struct BaudRate
{
    int bitsPerSecond;
    speed_t code; // as the terminal settings hold it
};

constexpr BaudRate baudRates[] = {
    {9600, B9600}, {115200, B115200}, {19200, B19200},   {57600, B57600},   {38400, B38400},
    {4800, B4800}, {230400, B230400}, {460800, B460800}, {921600, B921600},
};

inline std::vector<int> allowedRates()
{
    std::vector<int> rates;
    for (const BaudRate& rate : baudRates)
        rates.push_back(rate.bitsPerSecond);
    return rates;
}

#endif
