// Ctrl-C and SIGTERM as a request to stop, so that a sub-command can put everything back first.
#ifndef ZUCOM_TOOLS_STOP_SIGNAL_H
#define ZUCOM_TOOLS_STOP_SIGNAL_H

#include <csignal>

// While one lives, the two signals interrupt a waiting system call and are remembered. One at a time.
class StopSignal
{
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    bool requested() const;
    bool pause(int milliseconds) const; // false as soon as the request comes
    int descriptor() const;             // becomes readable with the request; for poll()

private:
    struct sigaction oldInterrupt_;
    struct sigaction oldTerminate_;
    struct sigaction oldAlarm_;
};

#endif
