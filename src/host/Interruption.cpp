#include "host/Interruption.h"

#include <tessel/DiskScanner.h>

#include <csignal>
#include <sys/wait.h>

namespace ovra::tessel {

namespace {

thread_local int t_lastSignal = 0;
thread_local bool t_isEnded = false;

} // namespace

int lastScanSignal() noexcept
{
    return t_lastSignal;
}

void setLastScanSignal(int signal)
{
    t_lastSignal = signal;
}

bool isScanEnded() noexcept
{
    return t_isEnded;
}

void setScanEnded(bool isEnded)
{
    t_isEnded = isEnded;
}

void throwIfInterrupted(int status)
{
    // A shell reports a signal that ended its own command by its exit code.
    constexpr int SIGNALLED = 128;
    for (const int signal : {SIGINT, SIGQUIT}) {
        if ((WIFSIGNALED(status) && WTERMSIG(status) == signal) ||
            (WIFEXITED(status) && WEXITSTATUS(status) == SIGNALLED + signal)) {
            throw Interruption{signal};
        }
    }
}

} // namespace ovra::tessel
