#include "host/HostRescan.h"

#include "host/CommandLines.h"
#include "host/DiskScannerHandlerImpl.h"
#include "host/RescanCommand.h"
#include "session/Log.h"

#include <string>
#include <sys/wait.h>
#include <unistd.h>

std::string g_kxRescanTimeout = "1800";
std::string g_tmpBlockCheckCmd = "lsscsi | grep tmp-block";

namespace ovra::tessel {

namespace {

const int LONGEST_WAIT_S = 1500;

void rescanWithKorvex()
{
    const int status = runCommand("timeout " + g_kxRescanTimeout + " kxRescan 2>/dev/null");
    COMMLOG(OS_LOG_INFO, "============kxRescan returnCode = %d=============", WEXITSTATUS(status));
}

void rescanWithScript()
{
    // Twice: the second run finds what the first one's changes brought into view.
    const std::string command = rescanCommand();
    for (int run = 0; run < 2; ++run) {
        runCommand(command);
    }
    COMMLOG(OS_LOG_DEBUG, "=============rescan-scsi-bus.sh start============");
}

void waitForTemporaryDevices()
{
    int status = runCommand(g_tmpBlockCheckCmd);
    for (int waited = 0; waited < LONGEST_WAIT_S && status == 0; ++waited) {
        status = runCommand(g_tmpBlockCheckCmd);
        sleep(1);
    }
}

} // namespace

bool isKorvexFound()
{
    return runCommand("which kxRescan >/dev/null 2>&1") == 0;
}

void rescanHost(bool withKorvex)
{
    if (withKorvex) {
        rescanWithKorvex();
    } else {
        rescanWithScript();
    }
    COMMLOG(OS_LOG_INFO, "============Rescan -r success=============\n");
    waitForTemporaryDevices();
}

} // namespace ovra::tessel
