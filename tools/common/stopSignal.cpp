// Ctrl-C and SIGTERM as a request to stop, so that a sub-command can put everything back first.
#include "tools/common/stopSignal.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

volatile std::sig_atomic_t stopRequested = 0;
int stopPipe[2] = {-1, -1};

void onStop(int)
{
    const int savedErrno = errno;
    stopRequested = 1;
    [[maybe_unused]] const ssize_t written = write(stopPipe[1], "", 1);
    alarm(1); // comes here again and interrupts a wait that had not quite begun
    errno = savedErrno;
}

} // namespace

StopSignal::StopSignal()
{
    if (pipe2(stopPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    stopRequested = 0;
    struct sigaction action
    {
    };
    action.sa_handler = onStop; // without SA_RESTART: a wait ends at once
    sigaction(SIGINT, &action, &oldInterrupt_);
    sigaction(SIGTERM, &action, &oldTerminate_);
    sigaction(SIGALRM, &action, &oldAlarm_);
}

StopSignal::~StopSignal()
{
    sigaction(SIGINT, &oldInterrupt_, nullptr);
    sigaction(SIGTERM, &oldTerminate_, nullptr);
    alarm(0);
    sigaction(SIGALRM, &oldAlarm_, nullptr);
    close(stopPipe[0]);
    close(stopPipe[1]);
}

bool StopSignal::requested() const { return stopRequested != 0; }

bool StopSignal::pause(int milliseconds) const
{
    pollfd stop{descriptor(), POLLIN, 0};
    return poll(&stop, 1, milliseconds) == 0;
}

int StopSignal::descriptor() const { return stopPipe[0]; }
