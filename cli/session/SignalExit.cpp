#include "session/SignalExit.h"

#include "kernel/Failure.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr std::array<int, 3> WATCHED = {SIGINT, SIGTERM, SIGHUP};
constexpr unsigned char NO_SIGNAL = 0;

std::array<int, 2> arrivals = {-1, -1}; // the pipe through which a signal reaches the thread
std::array<struct sigaction, WATCHED.size()> before;

extern "C" void passOn(int signal)
{
    const int error = errno;
    const auto byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t written = write(arrivals[1], &byte, 1);
    errno = error;
}

void watch()
{
    struct sigaction action = {};
    action.sa_handler = passOn;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND); // the second one ends the process
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < WATCHED.size(); ++i) {
        sigaction(WATCHED[i], nullptr, &before[i]);
        if (before[i].sa_handler != SIG_IGN) {
            sigaction(WATCHED[i], &action, nullptr);
        }
    }
}

/** What the process still prints while it ends would be about requests without a session. */
void silence()
{
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
}

void awaitSignal(const std::function<void()>& lastWork)
{
    unsigned char signal = NO_SIGNAL;
    while (read(arrivals[0], &signal, 1) < 0 && errno == EINTR) {
    }
    if (signal == NO_SIGNAL) {
        return;
    }
    silence();
    lastWork();
    kill(getpid(), signal); // its handler was for once
    pause();
}

} // namespace

SignalExit::SignalExit(std::function<void()> lastWork) : m_lastWork(std::move(lastWork))
{
    if (pipe2(arrivals.data(), O_CLOEXEC) != 0) {
        throw Failure("no more files can be opened");
    }
    sigset_t all;
    sigset_t own;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &own); // signals are for the other threads
    m_thread = std::thread([this] { awaitSignal(m_lastWork); });
    pthread_sigmask(SIG_SETMASK, &own, nullptr);
    watch();
}

SignalExit::~SignalExit()
{
    for (size_t i = 0; i < WATCHED.size(); ++i) {
        sigaction(WATCHED[i], &before[i], nullptr);
    }
    [[maybe_unused]] const ssize_t written = write(arrivals[1], &NO_SIGNAL, 1);
    m_thread.join(); // does not return where a signal came first
    close(arrivals[0]);
    close(arrivals[1]);
}

} // namespace tesselctl
