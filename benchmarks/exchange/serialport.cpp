// libserialport: the caller says how long the answer is.
#include "benchmarks/exchange/contender.h"

#include <libserialport.h>

namespace
{
constexpr unsigned timeout = 1000; // ms

class SerialportLine final : public Exchange
{
public:
    SerialportLine(const std::string& path, const Talk& said) : talk(said), buffer(callerBuffer)
    {
        expect(sp_get_port_by_name(path.c_str(), &port) == SP_OK);
        expect(sp_open(port, SP_MODE_READ_WRITE) == SP_OK && sp_set_baudrate(port, 115200) == SP_OK);
    }
    SerialportLine(const SerialportLine&) = delete;
    SerialportLine& operator=(const SerialportLine&) = delete;
    ~SerialportLine() override
    {
        sp_close(port);
        sp_free_port(port);
    }

    void run() override
    {
        expect(sp_blocking_write(port, talk.request.data(), talk.request.size(), timeout) > 0);
        expect(sp_blocking_read(port, buffer.data(), talk.answer.size(), timeout) ==
               static_cast<int>(talk.answer.size()));
    }

private:
    sp_port* port = nullptr;
    const Talk talk;
    std::vector<uint8_t> buffer;
};
} // namespace

const Contender serialportExchange{"libserialport", readerTalk, [](const std::string& path, const Talk& talk) {
                                       return std::unique_ptr<Exchange>(std::make_unique<SerialportLine>(path, talk));
                                   }};
