#include "disk/HostFiles.h"

#include "kernel/Failure.h"
#include "session/Secret.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/Programs.h>

#include <linux/capability.h>
#include <unistd.h>

namespace tesselctl {

std::string hostPath(const std::string& path)
{
    return environment("TESSELCTL_ROOT") + path;
}

std::vector<std::string> hostRoots()
{
    std::vector<std::string> roots = {""};
    if (!hostPath("").empty()) {
        roots.push_back(hostPath(""));
    }
    return roots;
}

bool exists(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

std::string findProgram(const std::string& name)
{
    return ovra::disk::findInPath(name);
}

bool hasCapability(int capability)
{
    const std::string key = "CapEff:";
    for (const auto& line : ovra::disk::linesOf(ovra::disk::contentOf("/proc/self/status"))) {
        if (line.compare(0, key.size(), key) == 0) {
            return ((std::stoull(line.substr(key.size()), nullptr, 16) >> capability) & 1U) != 0;
        }
    }
    return geteuid() == 0;
}

bool hasScanRights()
{
    return hasCapability(CAP_SYS_ADMIN) && hasCapability(CAP_SYS_RAWIO);
}

void requireScanRights(const std::string& work)
{
    if (!hasScanRights()) {
        throw Failure(work + " writes sysfs and sends SCSI commands: run it as root");
    }
}

} // namespace tesselctl
