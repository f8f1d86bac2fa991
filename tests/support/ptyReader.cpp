#include "tests/support/ptyReader.h"

#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{

void require(bool holds, const char* what)
{
    if (!holds)
        throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

PtyReader::PtyReader() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)), slave_(-1)
{
    require(master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0, "posix_openpt");
    char name[64];
    require(ptsname_r(master_, name, sizeof name) == 0, "ptsname_r");
    path_ = name;
    slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    require(slave_ >= 0, name);
    termios raw = line();
    cfmakeraw(&raw);
    require(tcsetattr(slave_, TCSANOW, &raw) == 0, "tcsetattr");
}

PtyReader::~PtyReader() { hangUp(); }

termios PtyReader::line() const
{
    termios line{};
    require(tcgetattr(slave_, &line) == 0, "tcgetattr");
    return line;
}

void PtyReader::write(const Bytes& bytes) const
{
    int waitingBefore = 0;
    ioctl(slave_, FIONREAD, &waitingBefore);
    require(::write(master_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "write");
    // The terminal hands bytes over on a kernel thread.
    for (int waiting = 0; waiting < waitingBefore + static_cast<int>(bytes.size()); ioctl(slave_, FIONREAD, &waiting))
    {
        pollfd device{slave_, POLLIN, 0};
        require(poll(&device, 1, 10000) == 1, "poll");
    }
}

void PtyReader::answers(std::vector<Bytes> pieces) { pieces_.assign(pieces.begin(), pieces.end()); }

void PtyReader::writeNext()
{
    if (pieces_.empty())
        return;
    write(pieces_.front());
    pieces_.pop_front();
}

Bytes PtyReader::read(std::size_t count) const
{
    Bytes received;
    while (received.size() < count)
    {
        pollfd reader{master_, POLLIN, 0};
        require(poll(&reader, 1, 10000) == 1, "poll");
        uint8_t chunk[4096];
        const ssize_t length = ::read(master_, chunk, sizeof chunk);
        require(length > 0, "read");
        received.insert(received.end(), chunk, chunk + length);
    }
    return received;
}

void PtyReader::release() const { ioctl(slave_, TIOCNXCL); }

void PtyReader::hangUp()
{
    for (int* end : {&master_, &slave_})
    {
        if (*end >= 0)
            close(*end);
        *end = -1;
    }
}
