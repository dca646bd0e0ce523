#include "host/HostRescan.h"

#include "host/CommandLines.h"
#include "observer/Steps.h"
#include "session/CallsAtWork.h"
#include "session/FewLines.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/Nodes.h>
#include <ovra/disk/RescanScript.h>

#include <sys/wait.h>

namespace ovra::tessel {

namespace {

constexpr int LONGEST_WAIT_S = 1500;
constexpr const char* RESCAN_AND_REMOVE = "rescan-scsi-bus.sh -r >/dev/null 2>&1";
constexpr const char* RESCAN_ONLY = "rescan-scsi-bus.sh >/dev/null 2>&1";

void rescanWithKorvex()
{
    const int status = runCommand("timeout " + g_kxRescanTimeout + " kxRescan 2>/dev/null");
    COMMLOG(OS_LOG_INFO, "============kxRescan returnCode = %d=============", WEXITSTATUS(status));
    if (status == -1) {
        COMMLOG(OS_LOG_WARN,
                "How kxRescan ended is not known: another part of this program has waited for it.");
    }
}

/** Says which script cannot be trusted with the removal of disks that are gone; true when none is found. */
bool checkScript()
{
    const std::string harmful = disk::harmfulRescanScript();
    if (!harmful.empty()) {
        COMMLOG(OS_LOG_ERROR,
                "%s takes healthy disks for gone and would remove them: rescanning without -r, so that disks "
                "that are gone stay. Install sg3-utils 1.48 or later.",
                harmful.c_str());
    }
    return harmful.empty();
}

/** Says which disks are away for now: the script would remove them, and nothing would bring them back. */
bool checkDisks()
{
    const std::vector<std::string> away = disk::disksNotRunning();
    FewLines lines(OS_LOG_ERROR);
    for (const std::string& disk : away) {
        COMMLOG(lines.next(), "%s: rescanning without -r, which would remove it; disks that are gone stay.",
                disk.c_str());
    }
    if (lines.rest() != 0) {
        COMMLOG(OS_LOG_ERROR, "%u more disks are not running: rescanning without -r.", lines.rest());
    }
    return away.empty();
}

/** Whether a look shows no harm; one that cannot be had shows nothing. */
bool isHarmless(bool (*look)())
{
    try {
        return look();
    } catch (const disk::Unreadable& problem) {
        COMMLOG(
            OS_LOG_ERROR,
            "Whether a rescan with -r would remove healthy disks cannot be told, %s: rescanning without -r, "
            "so that disks that are gone stay.",
            problem.what());
        return false;
    }
}

void rescanWithScript(bool mayRemove)
{
    mayRemove = mayRemove && isHarmless(&checkScript);
    // The second run finds what the first one's changes brought into view: docs/oddities.md#rescan-twice
    for (int run = 0; run < 2; ++run) {
        mayRemove = mayRemove && isHarmless(&checkDisks);
        runCommand(mayRemove ? RESCAN_AND_REMOVE : RESCAN_ONLY);
    }
    // docs/oddities.md#rescan-start
    COMMLOG(OS_LOG_DEBUG, "=============rescan-scsi-bus.sh start============");
}

void waitForTemporaryDevices()
{
    int status = runCommand(g_tmpBlockCheckCmd);
    for (int waited = 0; waited < LONGEST_WAIT_S && status == 0; ++waited) {
        status = runCommand(g_tmpBlockCheckCmd);
        sleepOrEnd(1);
    }
    if (status == -1) {
        COMMLOG(OS_LOG_WARN, "It cannot be told whether there are temporary devices: not waiting for them.");
    }
}

} // namespace

void rescanHost(disk::Presence korvex)
{
    const TimedScan scan(korvex == disk::Presence::PRESENT ? "kxRescan" : "rescan-scsi-bus.sh");
    if (korvex == disk::Presence::PRESENT) {
        rescanWithKorvex();
    } else {
        rescanWithScript(korvex == disk::Presence::ABSENT);
    }
    COMMLOG(OS_LOG_INFO, "============Rescan -r success=============\n"); // docs/oddities.md#rescan-success
    waitForTemporaryDevices();
}

} // namespace ovra::tessel
