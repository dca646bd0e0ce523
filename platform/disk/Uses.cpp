#include "ovra/disk/Uses.h"

#include "ovra/disk/Files.h"
#include "ovra/disk/Nodes.h"
#include "ovra/disk/Tables.h"

#include <algorithm>
#include <cerrno>
#include <set>

namespace ovra::disk {
namespace {

constexpr const char* OWN_MOUNTS = "/proc/self/mountinfo";
constexpr const char* SWAPS = "/proc/swaps";

bool isNumber(const std::string& name)
{
    return name.find_first_not_of("0123456789") == std::string::npos;
}

/** Looks at the tables of the kernel, and keeps in mind which of them it could not see. */
class Search
{
public:
    Search(const std::string& disk, const std::string& root)
        : m_root(root), m_nodes(nodesOn(disk, root)), m_mounts(mounts()), m_swaps(swaps())
    {
        if (m_nodes.front().number.empty()) {
            m_uses.unknown.push_back(m_nodes.front().folder + " cannot be read");
        }
    }

    Uses run()
    {
        for (const Node& node : m_nodes) {
            if (!node.below.empty()) {
                m_uses.found.push_back(node.below + " is held by " + node.name +
                                       (node.mapped.empty() ? "" : " (" + node.mapped + ")"));
            }
            lookForMounts(node);
            if (std::find(m_swaps.begin(), m_swaps.end(), "/dev/" + node.name) != m_swaps.end()) {
                m_uses.found.push_back(node.name + " is swapped to");
            }
        }
        return m_uses;
    }

private:
    /** The mounts of every process: containers have mounts that this one does not see. */
    std::vector<Mount> mounts()
    {
        std::vector<Mount> all = mountsIn(m_root + OWN_MOUNTS);
        if (all.empty()) {
            m_uses.unknown.push_back(m_root + OWN_MOUNTS + " cannot be read");
        }
        std::set<std::string> seen = {viewOf("self")};
        for (const std::string& process : namesIn(m_root + "/proc")) {
            const std::string view = isNumber(process) ? viewOf(process) : std::string();
            if (!isNumber(process) || (!view.empty() && !seen.insert(view).second)) {
                continue;
            }
            const std::string file = m_root + "/proc/" + process + "/mountinfo";
            errno = 0;
            const std::vector<Mount> more = mountsIn(file);
            if (more.empty() &&
                (errno == EACCES || errno == EPERM)) { // a process that has ended has no mounts
                m_uses.unknown.push_back(file + " cannot be read");
            }
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }

    static std::vector<Mount> mountsIn(const std::string& file) { return parseMounts(contentOf(file)); }

    /** What a process's mountinfo depends on: its namespace, and its root directory. */
    std::string viewOf(const std::string& process) const
    {
        const std::string folder = m_root + "/proc/" + process;
        const std::string mountNamespace = targetOf(folder + "/ns/mnt");
        return mountNamespace.empty() ? std::string() : mountNamespace + targetOf(folder + "/root");
    }

    std::vector<std::string> swaps()
    {
        const std::optional<std::string> table = readFile(m_root + SWAPS);
        if (!table && errno != ENOENT) { // a kernel without swap has no such file
            m_uses.unknown.push_back(m_root + SWAPS + " cannot be read");
        }
        return parseSwaps(table.value_or(std::string()));
    }

    void lookForMounts(const Node& node)
    {
        std::set<std::string> points;
        for (const Mount& mount : m_mounts) {
            // File systems with a number of their own, such as btrfs, show the device as their source alone.
            if ((mount.device == node.number && !node.number.empty()) ||
                mount.source == "/dev/" + node.name ||
                (!node.mapped.empty() && mount.source == "/dev/mapper/" + node.mapped)) {
                points.insert(mount.point);
            }
        }
        for (const std::string& point : points) {
            m_uses.found.push_back(node.name + " is mounted on " + point);
        }
    }

    const std::string& m_root;
    Uses m_uses;
    const std::vector<Node> m_nodes;
    const std::vector<Mount> m_mounts;
    const std::vector<std::string> m_swaps;
};

} // namespace

Uses usesOf(const std::string& disk, const std::string& root)
{
    return Search(disk, root).run();
}

} // namespace ovra::disk
