// What do 500 open ports cost an exchange, and what does opening one cost beside the system calls it makes?
//
//   zucom-bench-ports ROUNDS
#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include <fcntl.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <zucom/zucom.h>

#include "benchmarks/support/pairedRun.h"
#include "benchmarks/support/ptyReader.h"

namespace
{
constexpr std::size_t manyPorts = 500;
constexpr int exchanges = 300;
constexpr int openings = 20;

void expect(bool done)
{
    if (!done)
        throw std::runtime_error("an operation went wrong");
}

const std::vector<uint8_t> request = readerFrame(6);

class Ports
{
public:
    explicit Ports(const std::vector<std::string>& paths)
    {
        for (const std::string& path : paths)
        {
            handles.push_back(ZUCOM_OpenPort(path.c_str()));
            expect(handles.back() > 0 && ZUCOM_SetPortPara(handles.back(), "TXDELAYTIME", "0") == 0);
        }
    }
    Ports(const Ports&) = delete;
    Ports& operator=(const Ports&) = delete;
    ~Ports()
    {
        for (const int handle : handles)
            ZUCOM_ClosePort(handle);
    }

    // The one in the middle: neither found first nor with the smallest descriptor.
    double exchange() const
    {
        return timed(CLOCK_THREAD_CPUTIME_ID,
                     [&]
                     {
                         for (int i = 0; i < exchanges; ++i)
                             exchangeOn(handles[handles.size() / 2]);
                     });
    }

private:
    static void exchangeOn(int handle)
    {
        static std::vector<uint8_t> buffer(40000);
        expect(ZUCOM_Transmit(handle, request.data(), request.size()) > 0);
        expect(ZUCOM_Receive(handle, buffer.data(), buffer.size()) > 0);
    }

    std::vector<int> handles;
};

void manyBesideOne(const PtyReader& reader, int rounds)
{
    const std::vector<std::string> one(1, reader.paths()[manyPorts / 2]);
    PairedRun run;
    run.add("one of 1", [&] { return Ports(one).exchange(); });
    run.add("one of 500", [&] { return Ports(reader.paths()).exchange(); });
    run.run(rounds);
    report("ports.one-of-500", run.ratio("one of 500", "one of 1"));
}

// What opening a port asks of the system.
int bareOpen(const std::string& path, termios& old)
{
    const int device = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    fcntl(device, F_SETFD, FD_CLOEXEC);
    expect(tcgetattr(device, &old) == 0);
    fcntl(device, F_SETFL, 0);
    termios settings{};
    cfsetispeed(&settings, B9600);
    cfsetospeed(&settings, B9600);
    settings.c_cflag |= CS8 | PARENB;
    settings.c_iflag = IGNBRK | INPCK;
    settings.c_cc[VMIN] = 1;
    expect(tcsetattr(device, TCSANOW, &settings) == 0);
    tcflush(device, TCIOFLUSH);
    expect(ioctl(device, TIOCEXCL) == 0);
    serial_rs485 rs485{};
    ioctl(device, TIOCGRS485, &rs485);
    return device;
}

double openBare(const std::string& path)
{
    double cost = 0;
    for (int i = 0; i < openings; ++i)
    {
        int device = -1;
        termios old{};
        cost += timed(CLOCK_THREAD_CPUTIME_ID, [&] { device = bareOpen(path, old); });
        tcsetattr(device, TCSANOW, &old);
        close(device);
    }
    return cost;
}

double openPort(const std::string& path)
{
    double cost = 0;
    for (int i = 0; i < openings; ++i)
    {
        int handle = 0;
        cost += timed(CLOCK_THREAD_CPUTIME_ID, [&] { handle = ZUCOM_OpenPort(path.c_str()); });
        expect(handle > 0);
        ZUCOM_ClosePort(handle);
    }
    return cost;
}

void opening(const PtyReader& reader, int rounds)
{
    const Ports others({reader.paths().begin() + 1, reader.paths().end()});
    PairedRun run;
    run.add("bare", [&] { return openBare(reader.path()); });
    run.add("zucom", [&] { return openPort(reader.path()); });
    run.run(rounds);
    report("ports.open-beside-bare", run.ratio("zucom", "bare"));
    report("ports.open.us", run.cost("zucom") / openings / 1000);
}
} // namespace

int main(int argc, char** argv)
try
{
    if (argc != 2)
        return 2;
    const PtyReader reader(request.size(), readerFrame(6), manyPorts);
    manyBesideOne(reader, std::atoi(argv[1]));
    opening(reader, std::atoi(argv[1]));
    return 0;
}
catch (const std::exception& failure)
{
    std::cerr << "zucom-bench-ports: " << failure.what() << '\n';
    return 1;
}
