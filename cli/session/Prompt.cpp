#include "session/Secret.h"

#include "kernel/Failure.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr std::array<int, 7> WATCHED = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGTTIN, SIGTTOU};
volatile std::sig_atomic_t arrived = 0;

extern "C" void remember(int signal)
{
    arrived = signal;
}

/** Signals end the read instead of the process while this lives. */
class SignalWatch
{
public:
    SignalWatch()
    {
        struct sigaction action
        {
        };
        action.sa_handler = remember; // no SA_RESTART: the read is to end
        sigemptyset(&action.sa_mask);
        for (size_t i = 0; i < WATCHED.size(); ++i) {
            sigaction(WATCHED[i], &action, &m_before[i]);
        }
    }
    ~SignalWatch()
    {
        for (size_t i = 0; i < WATCHED.size(); ++i) {
            sigaction(WATCHED[i], &m_before[i], nullptr);
        }
    }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

private:
    std::array<struct sigaction, WATCHED.size()> m_before{};
};

/** A terminal that shows nothing of what is typed while this lives. */
class Silence
{
public:
    explicit Silence(int terminal) : m_terminal(terminal)
    {
        tcgetattr(terminal, &m_before);
        termios quiet = m_before;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
        tcsetattr(terminal, TCSAFLUSH, &quiet);
    }
    ~Silence()
    {
        tcsetattr(m_terminal, TCSAFLUSH, &m_before);
        // The Enter that was typed was not shown either.
        [[maybe_unused]] const ssize_t written = write(m_terminal, "\n", 1);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int m_terminal;
    termios m_before{};
};

/** One line; stops early when a signal arrives. */
std::string readLine(int terminal)
{
    std::string line;
    char c = 0;
    while (arrived == 0) {
        const ssize_t got = read(terminal, &c, 1);
        if (got == 1 && c != '\n') {
            line += c;
        } else if (got >= 0 || errno != EINTR) {
            break;
        }
    }
    return line;
}

std::string askOnce(int terminal, const std::string& question)
{
    const SignalWatch watch;
    const Silence silence(terminal);
    if (write(terminal, question.data(), question.size()) < 0) {
        return "";
    }
    return readLine(terminal);
}

} // namespace

std::string askSecret(const std::string& question)
{
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal < 0) {
        throw UsageError(
            "there is no terminal to ask for the password: give --password-file or TESSEL_PASSWORD");
    }
    std::string secret;
    do {
        arrived = 0;
        secret = askOnce(terminal, question);
        if (arrived != 0) {
            raise(arrived); // ends or stops the process as it would have without the question
        }
    } while (arrived != 0);
    close(terminal);
    if (secret.empty()) {
        throw UsageError("no password was typed");
    }
    return secret;
}

} // namespace tesselctl
