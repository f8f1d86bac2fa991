// libmodbus: coils are read, because their answers can have the lengths compared.
#include "benchmarks/exchange/contender.h"

#include <modbus/modbus.h>

namespace
{
constexpr uint8_t slave = 1;
constexpr uint8_t readCoils = 1;
constexpr std::size_t answerOverhead = 5; // slave, function, count of bytes, CRC
constexpr std::size_t requestCrc = 2;     // added by the library

uint8_t low(std::size_t value) { return static_cast<uint8_t>(value); }

void appendCrc(std::vector<uint8_t>& message)
{
    unsigned crc = 0xFFFF;
    for (const uint8_t byte : message)
    {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xA001 : crc >> 1;
    }
    message.push_back(low(crc));
    message.push_back(low(crc >> 8));
}

Talk coilTalk(std::size_t answerLength)
{
    if (answerLength > MODBUS_RTU_MAX_ADU_LENGTH)
        return {};
    const std::size_t bytes = answerLength - answerOverhead;
    Talk talk;
    talk.request = {slave, readCoils, 0, 0, low(bytes * 8 >> 8), low(bytes * 8)};
    talk.answer = {slave, readCoils, low(bytes)};
    talk.answer.resize(answerLength - requestCrc, 0x5A);
    appendCrc(talk.answer);
    appendCrc(talk.request);
    return talk;
}

class ModbusLine final : public Exchange
{
public:
    ModbusLine(const std::string& path, const Talk& said) : talk(said)
    {
        context = modbus_new_rtu(path.c_str(), 115200, 'N', 8, 1);
        expect(context && modbus_set_slave(context, slave) == 0 && modbus_connect(context) == 0);
        expect(modbus_set_response_timeout(context, 1, 0) == 0);
    }
    ModbusLine(const ModbusLine&) = delete;
    ModbusLine& operator=(const ModbusLine&) = delete;
    ~ModbusLine() override
    {
        modbus_close(context);
        modbus_free(context);
    }

    void run() override
    {
        const int length = static_cast<int>(talk.request.size() - requestCrc);
        expect(modbus_send_raw_request(context, talk.request.data(), length) > 0);
        expect(modbus_receive_confirmation(context, buffer) == static_cast<int>(talk.answer.size()));
    }

private:
    modbus_t* context;
    Talk talk;
    uint8_t buffer[MODBUS_RTU_MAX_ADU_LENGTH];
};
} // namespace

const Contender modbusExchange{"libmodbus", coilTalk, [](const std::string& path, const Talk& talk) {
                                   return std::unique_ptr<Exchange>(std::make_unique<ModbusLine>(path, talk));
                               }};
