#include "doctor/Finding.h"

#include "disk/HostFiles.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/Nodes.h>
#include <ovra/disk/RescanScript.h>

#include <linux/capability.h>

namespace tesselctl {
namespace {

struct Tool
{
    const char* name;
    const char* package;
    const char* use;
    bool needed; ///< nothing works without it
};

const std::vector<Tool>& tools()
{
    static const std::vector<Tool> all = {
        {"rescan-scsi-bus.sh", "sg3-utils", "rescans the SCSI buses", true},
        {"sg_inq", "sg3-utils", "is what rescan-scsi-bus.sh asks devices with", true},
        {"lsscsi", "lsscsi", "lists the devices to wait for and to remove", true},
        {"multipath", "multipath-tools", "finds the path of a stale device-mapper disk", false},
        {"timeout", "coreutils", "limits the rescan of Korvex", true},
        {"ls", "coreutils", "lists the disks by their identity", true},
        {"grep", "grep", "filters these lists", true},
        {"which", "debianutils", "looks for Korvex", true},
    };
    return all;
}

} // namespace

Findings checkRights(Context&)
{
    Findings findings;
    const auto check = [&](int capability, const char* name, const char* use) {
        const bool has = hasCapability(capability);
        findings.push_back({has ? Verdict::OK : Verdict::FAILURE, name, has ? "held" : "not held",
                            has ? "" : std::string(use) + " needs it: run as root"});
    };
    check(CAP_SYS_ADMIN, "right CAP_SYS_ADMIN", "rescanning and removing devices");
    check(CAP_SYS_RAWIO, "right CAP_SYS_RAWIO", "reading the identity of disks");
    return findings;
}

Findings checkTools(Context&)
{
    Findings findings;
    for (const auto& tool : tools()) {
        const std::string program = findProgram(tool.name);
        const Verdict missing = tool.needed ? Verdict::FAILURE : Verdict::WARNING;
        findings.push_back(
            {program.empty() ? missing : Verdict::OK, std::string("tool ") + tool.name,
             program.empty() ? "not found in PATH" : program,
             program.empty() ? "install the package " + std::string(tool.package) + ": it " + tool.use : ""});
    }
    return findings;
}

namespace {

/** While one is not running, no scan removes disks that are gone. */
void lookForDisksAway(Findings& findings)
{
    for (const auto& disk : ovra::disk::disksNotRunning(hostPath(""))) {
        findings.push_back({Verdict::WARNING, "disks", disk,
                            "scans run without -r until it runs again or is removed, and dead disks stay"});
    }
}

void lookAtScript(Findings& findings)
{
    if (findProgram(ovra::disk::RESCAN_SCRIPT).empty() || findProgram("sg_inq").empty()) {
        return;
    }
    const std::string harmful = ovra::disk::harmfulRescanScript();
    if (harmful.empty()) {
        findings.push_back({Verdict::OK, "rescan-scsi-bus.sh -r", "understands what sg_inq prints", ""});
    } else {
        findings.push_back(
            {Verdict::WARNING, "rescan-scsi-bus.sh -r",
             "removes healthy disks: " + harmful + " looks for words that sg_inq does not print",
             "install sg3-utils 1.48 or later; until then scans run without -r and dead disks stay"});
    }
}

} // namespace

Findings checkRescanScript(Context&)
{
    Findings findings;
    try {
        lookForDisksAway(findings);
        lookAtScript(findings);
    } catch (const ovra::disk::Unreadable& problem) {
        findings.push_back({Verdict::WARNING, "rescan-scsi-bus.sh -r", problem.what(),
                            "scans run without -r while that is so, and dead disks stay"});
    }
    return findings;
}

Findings checkKorvex(Context&)
{
    const std::string program = findProgram("kxRescan");
    return {{Verdict::OK, "Korvex multipath",
             program.empty() ? "not installed; the system's own rescan is used"
                             : program + " rescans and removes devices",
             ""}};
}

Findings checkUdev(Context&)
{
    const std::string folder = "/dev/disk/by-id";
    const bool isThere = exists(hostPath(folder));
    const auto names = ovra::disk::namesIn(hostPath(folder));
    bool hasScsi = false;
    for (const auto& name : names) {
        hasScsi = hasScsi || name.compare(0, 5, "scsi-") == 0 || name.compare(0, 4, "wwn-") == 0;
    }
    Findings findings;
    findings.push_back({isThere ? Verdict::OK : Verdict::WARNING, folder,
                        !isThere  ? "not there"
                        : hasScsi ? std::to_string(names.size()) + " names of disks"
                                  : "there, without SCSI disks yet",
                        isThere ? ""
                                : "udev makes it with the first disk: check that systemd-udevd runs "
                                  "('udevadm control --ping')"});
    return findings;
}

} // namespace tesselctl
