#include "disk/HostFiles.h"

#include "kernel/Failure.h"
#include "session/Secret.h"

#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <linux/capability.h>
#include <memory>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tesselctl {

std::string hostPath(const std::string& path)
{
    return environment("TESSELCTL_ROOT") + path;
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

std::vector<std::string> readLines(const std::string& path)
{
    std::istringstream content(readFile(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(content, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(folder.c_str()), closedir);
    if (!stream) {
        return names;
    }
    while (const dirent* entry = readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool exists(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

std::string findProgram(const std::string& name)
{
    std::istringstream path(environment("PATH"));
    for (std::string folder; std::getline(path, folder, ':');) {
        const std::string candidate = (folder.empty() ? "." : folder) + "/" + name;
        struct stat status
        {
        };
        if (stat(candidate.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
            access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return "";
}

bool hasCapability(int capability)
{
    const std::string key = "CapEff:";
    for (const auto& line : readLines("/proc/self/status")) {
        if (line.compare(0, key.size(), key) == 0) {
            return ((std::stoull(line.substr(key.size()), nullptr, 16) >> capability) & 1U) != 0;
        }
    }
    return geteuid() == 0;
}

void requireScanRights(const std::string& work)
{
    if (!hasCapability(CAP_SYS_ADMIN) || !hasCapability(CAP_SYS_RAWIO)) {
        throw Failure(work + " writes sysfs and sends SCSI commands: run it as root");
    }
}

} // namespace tesselctl
