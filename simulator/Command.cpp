#include "Command.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

extern char** environ;

namespace arraysim {
namespace {

std::vector<char*> pointers(const std::vector<std::string>& texts)
{
    std::vector<char*> all;
    all.reserve(texts.size() + 1);
    for (const auto& text : texts) {
        all.push_back(const_cast<char*>(text.c_str()));
    }
    all.push_back(nullptr);
    return all;
}

std::vector<std::string> merged(const Command::Environment& environment)
{
    std::vector<std::string> all;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text(*entry);
        if (environment.count(text.substr(0, text.find('='))) == 0) {
            all.push_back(text);
        }
    }
    for (const auto& [name, value] : environment) {
        if (!value.empty()) {
            all.push_back(std::string(name).append("=").append(value));
        }
    }
    return all;
}

/** SIGCHLD, and what asks this process to stop. */
sigset_t awaitedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGCHLD}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

} // namespace

Command::Command() : m_before(), m_pipeDefault(std::signal(SIGPIPE, SIG_IGN) == SIG_DFL)
{
    const sigset_t blocked = awaitedSignals();
    pthread_sigmask(SIG_BLOCK, &blocked, &m_before);
    // An ignored SIGCHLD, inherited from whoever started us, would take the command's status away.
    std::signal(SIGCHLD, SIG_DFL);
}

int Command::start(pid_t& pid, const std::vector<std::string>& words, const Environment& environment) const
{
    const std::vector<std::string> variables = merged(environment);
    sigset_t defaults;
    sigemptyset(&defaults);
    if (m_pipeDefault) {
        sigaddset(&defaults, SIGPIPE);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &m_before);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    const int failed = ::posix_spawnp(&pid, words[0].c_str(), nullptr, &attributes, pointers(words).data(),
                                      pointers(variables).data());
    posix_spawnattr_destroy(&attributes);
    return failed;
}

CommandEnd Command::run(const std::vector<std::string>& words, const Environment& environment) const
{
    pid_t pid = -1;
    if (const int failed = start(pid, words, environment); failed != 0) {
        std::cerr << "tessel-arraysim: cannot run " << words[0] << ": " << std::strerror(failed) << "\n";
        return {failed == ENOENT ? NOT_FOUND : NOT_EXECUTABLE, 0};
    }
    const sigset_t awaited = awaitedSignals();
    int status = 0;
    while (::waitpid(pid, &status, WNOHANG) != pid) {
        siginfo_t info;
        const int signal = sigwaitinfo(&awaited, &info);
        // What comes from the terminal has reached the command already.
        if (signal > 0 && signal != SIGCHLD && info.si_code != SI_KERNEL) {
            ::kill(pid, signal);
        }
    }
    return WIFSIGNALED(status) ? CommandEnd{128 + WTERMSIG(status), WTERMSIG(status)}
                               : CommandEnd{WEXITSTATUS(status), 0};
}

void Command::endLike(const CommandEnd& end)
{
    if (end.signal != 0) {
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        std::signal(end.signal, SIG_DFL);
        sigset_t unblocked;
        sigemptyset(&unblocked);
        sigaddset(&unblocked, end.signal);
        pthread_sigmask(SIG_UNBLOCK, &unblocked, nullptr);
        ::raise(end.signal);
    }
    std::exit(end.status);
}

} // namespace arraysim
