#include "host/ChildStatus.h"

#include <csignal>
#include <mutex>
#include <sys/wait.h>

namespace ovra::tessel {

namespace {

std::mutex g_mutex;
int g_users = 0;
bool g_changed = false;
struct sigaction g_before;

bool dropsStatus(const struct sigaction& action)
{
    return action.sa_handler == SIG_IGN || (action.sa_flags & SA_NOCLDWAIT) != 0;
}

} // namespace

ChildStatus::ChildStatus()
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (g_users++ != 0 || sigaction(SIGCHLD, nullptr, &g_before) != 0 || !dropsStatus(g_before)) {
        return;
    }
    struct sigaction keeping = g_before;
    keeping.sa_handler = g_before.sa_handler == SIG_IGN ? SIG_DFL : g_before.sa_handler;
    keeping.sa_flags &= ~SA_NOCLDWAIT;
    g_changed = sigaction(SIGCHLD, &keeping, nullptr) == 0;
}

ChildStatus::~ChildStatus()
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (--g_users != 0 || !g_changed) {
        return;
    }
    g_changed = false;
    struct sigaction now = {};
    if (sigaction(SIGCHLD, nullptr, &now) == 0 && now.sa_handler != SIG_DFL &&
        now.sa_handler != g_before.sa_handler) {
        return; // the application has chosen anew
    }
    sigaction(SIGCHLD, &g_before, nullptr);
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
}

} // namespace ovra::tessel
