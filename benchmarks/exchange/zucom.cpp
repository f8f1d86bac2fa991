#include "benchmarks/exchange/contender.h"

#include <zucom/zucom.h>

namespace
{
class ZucomLine final : public Exchange
{
public:
    ZucomLine(const std::string& path, const Talk& said)
        : handle(ZUCOM_OpenPort(path.c_str())), talk(said), buffer(callerBuffer)
    {
        expect(handle > 0 && ZUCOM_SetPortPara(handle, "TXDELAYTIME", "0") == 0);
    }
    ZucomLine(const ZucomLine&) = delete;
    ZucomLine& operator=(const ZucomLine&) = delete;
    ~ZucomLine() override { ZUCOM_ClosePort(handle); }

    void run() override
    {
        expect(ZUCOM_Transmit(handle, talk.request.data(), talk.request.size()) > 0);
        expect(ZUCOM_Receive(handle, buffer.data(), buffer.size()) == static_cast<int>(talk.answer.size()));
    }

private:
    const int handle;
    const Talk talk;
    std::vector<uint8_t> buffer;
};
} // namespace

const Contender zucomExchange{"zucom", readerTalk, [](const std::string& path, const Talk& talk) {
                                  return std::unique_ptr<Exchange>(std::make_unique<ZucomLine>(path, talk));
                              }};
