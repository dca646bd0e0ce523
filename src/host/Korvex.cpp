#include "host/Korvex.h"

#include "host/CommandLines.h"
#include "host/NeverDestroyed.h"
#include "session/Log.h"

#include <sys/wait.h>

std::atomic<bool> g_korvexInstalled{false};
// A thread may still scan when the process ends, and runs what they say.
HOST_NEVER_DESTROYED(std::string, g_kxRescanTimeout, "_Z17g_kxRescanTimeoutB5cxx11", ("1800"));
HOST_NEVER_DESTROYED(std::string, g_tmpBlockCheckCmd, "_Z18g_tmpBlockCheckCmdB5cxx11",
                     ("lsscsi | grep tmp-block"));

namespace ovra::tessel {

namespace {

using disk::Presence;

constexpr const char* KORVEX_RESCAN = "kxRescan";
constexpr int CANNOT_BE_RUN = 126; // exit code of a shell, as is 127: not found

// Until the first look, which a scanner that could not make the rescan lock does not take.
std::atomic<bool> g_isUnknown{true};

/** Whether it is in PATH, where no command can tell. */
Presence lookInPath()
{
    const Presence presence = disk::presenceOf(KORVEX_RESCAN);
    g_isUnknown = presence == Presence::UNKNOWN;
    if (g_isUnknown) {
        COMMLOG(OS_LOG_ERROR, "It cannot be told whether Korvex is installed: no device is removed. Every "
                              "directory in PATH must be readable.");
    }
    return presence;
}

} // namespace

Presence lookForKorvex()
{
    const int status = runCommand("which kxRescan >/dev/null 2>&1");
    if (status == -1 || !WIFEXITED(status) || WEXITSTATUS(status) >= CANNOT_BE_RUN) {
        return lookInPath();
    }
    g_isUnknown = false;
    return status == 0 ? Presence::PRESENT : Presence::ABSENT;
}

Presence knownKorvex()
{
    if (!g_korvexInstalled && g_isUnknown && lookInPath() == Presence::PRESENT) {
        g_korvexInstalled = true;
    }
    if (g_korvexInstalled) {
        return Presence::PRESENT;
    }
    return g_isUnknown ? Presence::UNKNOWN : Presence::ABSENT;
}

bool mayRemoveDevices()
{
    return knownKorvex() == Presence::ABSENT;
}

} // namespace ovra::tessel
