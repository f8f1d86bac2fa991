// The work whose cost run.sh counts, once with few and once with many repetitions: the difference is free of set-up.
//
//   zucom-figures exchange ANSWER COUNT   exchanges with a reader that answers so many bytes
//   zucom-figures log-lines COUNT         log lines, three from each operation; the configuration asks for them
//   zucom-figures heap                    memory of ports
//
// The first two print the heap allocations that the repetitions took.
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

#include "benchmarks/support/heapCounter.h"
#include "benchmarks/support/ptyReader.h"

namespace
{
constexpr std::size_t bufferSize = 40000;

void expect(bool done)
{
    if (!done)
        throw std::runtime_error("an operation went wrong");
}

class Line
{
public:
    explicit Line(std::size_t answerLength, std::size_t lines = 1)
        : request(readerFrame(6)), reader(request.size(), readerFrame(answerLength), lines), buffer(bufferSize)
    {
    }

    void open()
    {
        handle = ZUCOM_OpenPort(reader.path().c_str());
        expect(handle > 0 && ZUCOM_SetPortPara(handle, "TXDELAYTIME", "0") == 0);
    }

    void exchange()
    {
        expect(ZUCOM_Transmit(handle, request.data(), request.size()) > 0);
        expect(ZUCOM_Receive(handle, buffer.data(), buffer.size()) > 0);
    }

    const std::vector<std::string>& paths() const { return reader.paths(); }

private:
    std::vector<uint8_t> request;
    PtyReader reader;
    std::vector<uint8_t> buffer;
    int handle = 0;
};

template <class Work>
void countAllocations(int count, Work work)
{
    work(); // what is set up by the first is not the cost of the next
    const std::size_t before = HeapCounter::allocations();
    for (int i = 0; i < count; ++i)
        work();
    const std::size_t after = HeapCounter::allocations();
    std::cout << after - before << '\n';
}

void exchanges(std::size_t answerLength, int count)
{
    Line line(answerLength);
    line.open();
    countAllocations(count, [&] { line.exchange(); });
}

void logLines(int count)
{
    ZucomPort port("nowhere");
    char value[16];
    countAllocations(count / 3, [&] { expect(port.getPortPara("TIMEOUT", value) == 0); });
}

void heap()
{
    constexpr std::size_t ports = 50;
    Line line(6, 1 + ports);
    line.open();
    const std::size_t before = HeapCounter::bytes();
    for (std::size_t i = 1; i <= ports; ++i)
        expect(ZUCOM_OpenPort(line.paths()[i].c_str()) > 0);
    const std::size_t idle = HeapCounter::bytes();
    line.exchange();
    const std::size_t received = HeapCounter::bytes();
    std::cout << (idle - before) / ports << ' ' << received - idle << '\n';
}
} // namespace

int main(int argc, char** argv)
try
{
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "exchange" && argc == 4)
        exchanges(std::strtoul(argv[2], nullptr, 10), std::atoi(argv[3]));
    else if (what == "log-lines" && argc == 3)
        logLines(std::atoi(argv[2]));
    else if (what == "heap")
        heap();
    else
        return 2;
    return 0;
}
catch (const std::exception& failure)
{
    std::cerr << "zucom-figures: " << failure.what() << '\n';
    return 1;
}
