// An operation that is nothing but ten log points, called a hundred times for run.sh to count.
#include "port/zuCall.h"

extern "C" [[gnu::noinline]] int tenLogPoints(ZucomPort& port, const uint8_t* data, std::size_t size)
{
    const ZuCall call(port, "int ZucomPort::transmit(const uint8_t*, size_t)");
    call.trace(1, "Transmitting data: ", ZuDump{data, size});
    call.trace(2, "Sent ", static_cast<int64_t>(size), " Bytes");
    call.error(3, "Unable to send");
    call.note(4, "RS485 not available");
    call.trace(5, "Transmitting data: ", ZuDump{data, size});
    call.trace(6, "Sent ", static_cast<int64_t>(size), " Bytes");
    call.error(7, "Unable to send");
    call.note(8, "RS485 not available");
    call.trace(9, "Transmitting data: ", ZuDump{data, size});
    call.trace(10, "Sent ", static_cast<int64_t>(size), " Bytes");
    return 0;
}

int main()
{
    ZucomPort port("nowhere");
    const uint8_t data[] = {0x06, 0xFF, 0x52, 0x00, 0x0F, 0x6E};
    for (int i = 0; i < 100; ++i)
        tenLogPoints(port, data, sizeof data);
}
