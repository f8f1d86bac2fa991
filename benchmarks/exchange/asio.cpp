// Boost.Asio's serial port, its blocking calls: no time-out, and the caller says how long the answer is.
#include "benchmarks/exchange/contender.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/serial_port.hpp>
#include <boost/asio/write.hpp>

namespace
{
class AsioLine final : public Exchange
{
public:
    AsioLine(const std::string& path, const Talk& said) : port(context, path), talk(said), buffer(callerBuffer) {}

    void run() override
    {
        boost::asio::write(port, boost::asio::buffer(talk.request));
        boost::asio::read(port, boost::asio::buffer(buffer, talk.answer.size()));
    }

private:
    boost::asio::io_context context;
    boost::asio::serial_port port;
    const Talk talk;
    std::vector<uint8_t> buffer;
};
} // namespace

const Contender asioExchange{"Boost.Asio", readerTalk, [](const std::string& path, const Talk& talk) {
                                 return std::unique_ptr<Exchange>(std::make_unique<AsioLine>(path, talk));
                             }};
