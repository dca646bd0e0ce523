#include "doctor/Finding.h"

#include <ovra/disk/Files.h>

#include <cerrno>
#include <cstring>
#include <sys/sem.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr key_t RESCAN_KEY = 1235;
constexpr int NO_CREATION = 0;

Finding finding(Verdict verdict, const std::string& found, const std::string& advice = "")
{
    return {verdict, "rescan lock (semaphore key 1235)", found, advice};
}

std::string processName(int pid)
{
    const std::string name = ovra::disk::valueOf("/proc/" + std::to_string(pid) + "/comm");
    return name.empty() ? "process " + std::to_string(pid) + ", which is gone"
                        : "process " + std::to_string(pid) + " (" + name + ")";
}

/** What is wrong with the set itself, whatever its value. */
void judgeSet(int set, Findings& findings)
{
    if (set == 0) {
        findings.push_back(
            finding(Verdict::WARNING, "its ID is 0: every program that starts frees it",
                    "rescans may overlap; remove it with 'ipcrm -S 1235' while nothing scans, it is "
                    "made anew with another ID"));
    }
    semid_ds status = {};
    if (semctl(set, 0, IPC_STAT, &status) == 0 && status.sem_perm.cuid != geteuid()) {
        findings.push_back(finding(Verdict::WARNING,
                                   "made by user " + std::to_string(status.sem_perm.cuid) +
                                       ", not by this one (" + std::to_string(geteuid()) + ")",
                                   "let all programs that scan run as one user, or only root gets the lock"));
    }
}

} // namespace

Findings checkRescanLock(Context&)
{
    const int set = semget(RESCAN_KEY, 0, NO_CREATION); // looks only
    if (set < 0 && errno == ENOENT) {
        return {finding(Verdict::OK, "not made yet; the first scan makes it")};
    }
    const int value = set < 0 ? -1 : semctl(set, 0, GETVAL);
    if (value < 0) {
        return {finding(Verdict::FAILURE, std::string("cannot be read: ") + std::strerror(errno),
                        "it belongs to another user: see 'ipcs -s' and run as that user or root")};
    }
    Findings findings;
    if (value > 0) {
        findings.push_back(finding(Verdict::OK, "free"));
    } else {
        findings.push_back(finding(
            Verdict::WARNING, "held by " + processName(semctl(set, 0, GETPID)),
            "scans wait until it is free; a holder that is gone has left it broken: see 'ipcs -s -i " +
                std::to_string(set) + "'"));
    }
    judgeSet(set, findings);
    return findings;
}

} // namespace tesselctl
