// A pseudo-terminal that another program opens as if it were a serial device.
#include "tools/sim/ptyDevice.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "tools/common/baudRates.h"
#include "tools/common/failure.h"

namespace
{

namespace fs = std::filesystem;

int checked(int result, const char* what)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

// Raw, so that nothing is echoed while no program has set the line, and at a speed that no port opens with: setting a
// pseudo-terminal to what it is set to already counts as refused.
void setRaw(int slave)
{
    termios settings{};
    checked(tcgetattr(slave, &settings), "reading the settings of a pseudo-terminal");
    cfmakeraw(&settings);
    checked(tcsetattr(slave, TCSANOW, &settings), "setting up a pseudo-terminal");
}

void makeLink(const std::string& target, const std::string& link)
{
    if (fs::is_symlink(link))
        fs::remove(link);
    std::error_code error;
    fs::create_symlink(target, link, error);
    if (error)
        throw Refused("link " + link + ": " + error.message());
}

} // namespace

PtyDevice::PtyDevice(const std::string& link)
{
    master_.reset(checked(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "opening a pseudo-terminal"));
    checked(grantpt(master_.get()), "granting a pseudo-terminal");
    checked(unlockpt(master_.get()), "unlocking a pseudo-terminal");
    char name[64];
    if (ptsname_r(master_.get(), name, sizeof name) != 0)
        throw std::system_error(errno, std::generic_category(), "naming a pseudo-terminal");
    path_ = name;
    slave_.reset(checked(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC), name));
    setRaw(slave_.get());
    closing_.reset(checked(inotify_init1(IN_NONBLOCK | IN_CLOEXEC), "watching a pseudo-terminal"));
    checked(inotify_add_watch(closing_.get(), name, IN_CLOSE), "watching a pseudo-terminal");
    if (!link.empty())
        makeLink(path_, link);
    link_ = link;
}

PtyDevice::~PtyDevice()
{
    std::error_code ignored;
    if (!link_.empty() && fs::read_symlink(link_, ignored) == path_)
        fs::remove(link_, ignored);
}

bool PtyDevice::lineIs(int bitsPerSecond, int stopBits) const
{
    termios settings{};
    if (tcgetattr(slave_.get(), &settings) != 0)
        return false;
    const auto* rate = std::ranges::find(baudRates, bitsPerSecond, &BaudRate::bitsPerSecond);
    const bool speedFits = rate == std::end(baudRates) || cfgetospeed(&settings) == rate->code;
    const bool stopFits = stopBits == 0 || ((settings.c_cflag & CSTOPB) != 0) == (stopBits == 2);
    return speedFits && stopFits;
}

void PtyDevice::endExclusiveMode()
{
    char events[4096];
    while (read(closing_.get(), events, sizeof events) > 0)
    {
    }
    ioctl(slave_.get(), TIOCNXCL);
}
