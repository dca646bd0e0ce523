#include "disk/LocalDisks.h"

#include "disk/HostFiles.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace tesselctl {
namespace {

/// One line of mountinfo, as far as it matters here.
struct Mount
{
    std::string device; ///< "8:33"
    std::string source; ///< "/dev/sdc1"
    std::string point;
};

/// \040 and the like, as the kernel writes blanks in paths.
std::string unescaped(const std::string& text)
{
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const std::string digits = text.substr(i + 1, 3);
        const bool isEscape = text[i] == '\\' && digits.size() == 3 &&
                              digits.find_first_not_of("01234567") == std::string::npos;
        result += isEscape ? static_cast<char>(std::stoi(digits, nullptr, 8)) : text[i];
        i += isEscape ? 3 : 0;
    }
    return result;
}

void addMounts(const std::string& file, std::vector<Mount>& mounts)
{
    for (const auto& line : readLines(file)) {
        std::istringstream words(line);
        Mount mount;
        std::string word;
        words >> word >> word >> mount.device >> word >> mount.point;
        while (words >> word && word != "-") {
        }
        words >> word >> mount.source;
        mounts.push_back({mount.device, unescaped(mount.source), unescaped(mount.point)});
    }
}

/// The mounts of every process: containers have mounts that this one does not see.
std::vector<Mount> allMounts()
{
    std::vector<Mount> mounts;
    addMounts(hostPath("/proc/self/mountinfo"), mounts);
    std::set<std::string> seen = {readFile(hostPath("/proc/self/mountinfo"))};
    for (const auto& process : namesIn(hostPath("/proc"))) {
        const std::string file = hostPath("/proc/" + process + "/mountinfo");
        if (process.find_first_not_of("0123456789") == std::string::npos &&
            seen.insert(readFile(file)).second) {
            addMounts(file, mounts);
        }
    }
    return mounts;
}

/// A disk, a partition or a mapped device, and its folder in sysfs.
struct Node
{
    std::string name;
    std::string folder;
};

std::vector<Node> partitionsOf(const Node& disk)
{
    std::vector<Node> partitions;
    for (const auto& name : namesIn(disk.folder)) {
        if (exists(disk.folder + "/" + name + "/partition")) {
            partitions.push_back({name, disk.folder + "/" + name});
        }
    }
    return partitions;
}

/// Walks from a disk to everything that stands on it.
class Walk
{
public:
    std::vector<std::string> from(const std::string& disk)
    {
        visit({disk, hostPath("/sys/block/" + disk)});
        return m_uses;
    }

private:
    void visit(const Node& node)
    {
        if (!m_seen.insert(node.name).second) {
            return;
        }
        lookForMounts(node);
        for (const auto& line : m_swaps) {
            const std::string file = line.substr(0, line.find_first_of(" \t"));
            if (file == "/dev/" + node.name) {
                m_uses.push_back(node.name + " is swapped to");
            }
        }
        for (const auto& holder : namesIn(node.folder + "/holders")) {
            std::string name = readFile(hostPath("/sys/block/" + holder + "/dm/name"));
            name.erase(std::min(name.find('\n'), name.size()));
            m_uses.push_back(node.name + " is held by " + holder + (name.empty() ? "" : " (" + name + ")"));
            visit({holder, hostPath("/sys/block/" + holder)});
        }
        for (const auto& partition : partitionsOf(node)) {
            visit(partition);
        }
    }

    void lookForMounts(const Node& node)
    {
        std::string device = readFile(node.folder + "/dev");
        device.erase(std::min(device.find('\n'), device.size()));
        std::set<std::string> points;
        for (const auto& mount : m_mounts) {
            // File systems with a device number of their own, such as btrfs, show the disk as their source
            // alone.
            const bool bySource = mount.source == "/dev/" + node.name;
            if ((mount.device == device && !device.empty()) || bySource) {
                points.insert(mount.point);
            }
        }
        for (const auto& point : points) {
            m_uses.push_back(node.name + " is mounted on " + point);
        }
    }

    std::vector<Mount> m_mounts = allMounts();
    std::vector<std::string> m_swaps = readLines(hostPath("/proc/swaps"));
    std::set<std::string> m_seen;
    std::vector<std::string> m_uses;
};

} // namespace

std::vector<std::string> usesOf(const std::string& disk)
{
    return Walk().from(disk);
}

} // namespace tesselctl
