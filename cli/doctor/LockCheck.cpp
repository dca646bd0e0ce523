#include "doctor/Finding.h"

#include <ovra/disk/Files.h>

#include <cerrno>
#include <cstring>
#include <sys/sem.h>

namespace tesselctl {
namespace {

const key_t rescanKey = 1235;
const int noCreation = 0;

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

} // namespace

Findings checkRescanLock(Context&)
{
    const int set = semget(rescanKey, 0, noCreation); // looks only
    if (set < 0 && errno == ENOENT) {
        return {finding(Verdict::ok, "not made yet; the first scan makes it")};
    }
    const int value = set < 0 ? -1 : semctl(set, 0, GETVAL);
    if (value < 0) {
        return {finding(Verdict::failure, std::string("cannot be read: ") + std::strerror(errno),
                        "it belongs to another user: see 'ipcs -s' and run as that user or root")};
    }
    if (value > 0) {
        return {finding(Verdict::ok, "free")};
    }
    const int holder = semctl(set, 0, GETPID);
    return {
        finding(Verdict::warning, "held by " + processName(holder),
                "scans wait until it is free; a holder that is gone has left it broken: see 'ipcs -s -i " +
                    std::to_string(set) + "'")};
}

} // namespace tesselctl
