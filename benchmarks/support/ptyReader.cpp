#include "benchmarks/support/ptyReader.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <zucom/zuProtocol.h>

namespace
{
int checked(int result, const char* what)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

// The line as the library sets it up, but for the parity that no pseudo-terminal has. The speed differs from the
// library's first one: a pseudo-terminal refuses settings that change nothing.
void makeRaw(int device)
{
    termios settings{};
    settings.c_iflag = IGNBRK | INPCK;
    settings.c_cflag = CS8 | CREAD;
    settings.c_cc[VMIN] = 1;
    cfsetispeed(&settings, B38400);
    cfsetospeed(&settings, B38400);
    checked(tcsetattr(device, TCSANOW, &settings), "tcsetattr");
}

// The device stays open here as well: a terminal whose last user leaves hangs up.
int openTerminal(std::string& path)
{
    const int master = checked(posix_openpt(O_RDWR | O_NOCTTY), "posix_openpt");
    checked(grantpt(master), "grantpt");
    checked(unlockpt(master), "unlockpt");
    path = ptsname(master);
    makeRaw(checked(open(path.c_str(), O_RDWR | O_NOCTTY), "open"));
    return master;
}

void answer(int master, std::vector<uint8_t>& request, const std::vector<uint8_t>& bytes)
{
    for (std::size_t have = 0; have < request.size();)
        have += static_cast<std::size_t>(
            checked(static_cast<int>(read(master, request.data() + have, request.size() - have)), "read of a request"));
    for (std::size_t sent = 0; sent < bytes.size();)
        sent += static_cast<std::size_t>(
            checked(static_cast<int>(write(master, bytes.data() + sent, bytes.size() - sent)), "write of an answer"));
}

[[noreturn]] void answerForEver(const std::vector<int>& masters, std::size_t requestLength,
                                const std::vector<uint8_t>& bytes)
{
    const int waiting = checked(epoll_create1(0), "epoll_create1");
    for (const int master : masters)
    {
        epoll_event readable{EPOLLIN, {.fd = master}};
        checked(epoll_ctl(waiting, EPOLL_CTL_ADD, master, &readable), "epoll_ctl");
    }
    std::vector<uint8_t> request(requestLength);
    for (epoll_event event{};;)
    {
        checked(epoll_wait(waiting, &event, 1, -1), "epoll_wait");
        answer(event.data.fd, request, bytes);
    }
}
} // namespace

PtyReader::PtyReader(std::size_t requestLength, const std::vector<uint8_t>& answer, std::size_t lines)
{
    int pipeEnds[2];
    checked(pipe(pipeEnds), "pipe");
    process = checked(fork(), "fork");
    if (process == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::vector<int> masters;
        std::string names;
        for (std::string path; masters.size() < lines; names += path + '\n')
            masters.push_back(openTerminal(path));
        checked(static_cast<int>(write(pipeEnds[1], names.data(), names.size())), "write of the device names");
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        answerForEver(masters, requestLength, answer);
    }
    close(pipeEnds[1]);
    std::string name;
    for (char c = 0; read(pipeEnds[0], &c, 1) == 1;)
    {
        if (c != '\n')
            name += c;
        else
            devices.push_back(std::exchange(name, {}));
    }
    close(pipeEnds[0]);
    if (devices.size() != lines)
        throw std::runtime_error("the reader process could not open its pseudo-terminals");
    line = checked(open(path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), "open");
}

PtyReader::~PtyReader()
{
    close(line);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

void PtyReader::resetLine() const { makeRaw(line); }

std::vector<uint8_t> readerFrame(std::size_t length)
{
    const bool standard = length <= 255;
    std::vector<uint8_t> payload(length - (standard ? 4 : 6), 0x5A);
    payload[0] = 0x52;
    static ZuProt frame;
    if (!frame.setPayload(payload.data(), payload.size(), standard ? 0 : 2, 0, 255))
        throw std::invalid_argument("no frame of that length");
    std::size_t size = 0;
    const uint8_t* bytes = frame.protocol(&size);
    return {bytes, bytes + size};
}
