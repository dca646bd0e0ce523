#include "ovra/disk/Uses.h"

#include "ovra/disk/Files.h"
#include "ovra/disk/Nodes.h"
#include "ovra/disk/Processes.h"
#include "ovra/disk/ScsiDisks.h"
#include "ovra/disk/Tables.h"

#include <algorithm>
#include <set>

namespace ovra::disk {
namespace {

constexpr const char* OWN_MOUNTS = "/proc/self/mountinfo";
constexpr const char* SWAPS = "/proc/swaps";
constexpr const char* BTRFS = "/sys/fs/btrfs/";

/** Looks at the tables of the kernel, and keeps in mind which of them it could not see. */
class Search
{
public:
    Search(const std::string& disk, const std::string& root)
        : m_root(root), m_nodes(nodes(disk)), m_mounts(mounts()),
          m_swaps(known([&] { return parseSwaps(contentThere(m_root + SWAPS)); })) // not all kernels have it
    {
    }

    /** @param isUse tells of a node that holds another one. */
    template <class IsUse>
    Uses run(const IsUse& isUse)
    {
        for (const Node& node : m_nodes) {
            if (!node.below.empty() && isUse(node)) {
                m_uses.found.push_back(node.below + " is held by " + node.name +
                                       (node.mapped.empty() ? "" : " (" + node.mapped + ")"));
            }
            known([&] {
                lookForMounts(node);
                return true;
            });
            if (std::find(m_swaps.begin(), m_swaps.end(), "/dev/" + node.name) != m_swaps.end()) {
                m_uses.found.push_back(node.name + " is swapped to");
            }
        }
        return m_uses;
    }

private:
    struct SeenMount : Mount
    {
        std::string path; ///< by which this process gets there
    };

    /** What a look finds: nothing where something cannot be read, which is kept in mind. */
    template <class Look>
    auto known(const Look& look) -> decltype(look())
    {
        try {
            return look();
        } catch (const Unreadable& problem) {
            m_uses.unknown.emplace_back(problem.what());
            return {};
        }
    }

    /** The disk first; it alone where what stands on it is not known. */
    std::vector<Node> nodes(const std::string& disk)
    {
        std::vector<Node> found = known([&] { return nodesOn(disk, m_root); });
        if (found.empty()) {
            found.push_back({disk, "", "", "", ""});
        } else if (found.front().number.empty()) {
            m_uses.unknown.emplace_back(Unreadable(found.front().folder).what());
        }
        return found;
    }

    std::vector<SeenMount> ownMounts() const
    {
        std::vector<SeenMount> own = mountsIn(m_root + OWN_MOUNTS, "");
        if (own.empty()) {
            throw Unreadable(m_root + OWN_MOUNTS);
        }
        return own;
    }

    /** The mounts of every process: containers have mounts that this one does not see. */
    std::vector<SeenMount> mounts()
    {
        std::vector<SeenMount> all = known([&] { return ownMounts(); });
        std::set<std::string> seen = {viewOf("self")};
        for (const std::string& process : known([&] { return processes(m_root); })) {
            const std::string view = viewOf(process);
            if (!view.empty() && !seen.insert(view).second) {
                continue;
            }
            const std::string folder = m_root + "/proc/" + process;
            const std::vector<SeenMount> more =
                known([&] { return mountsIn(folder + "/mountinfo", folder + "/root"); });
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }

    static std::vector<SeenMount> mountsIn(const std::string& file, const std::string& top)
    {
        std::vector<SeenMount> mounts;
        for (const Mount& mount : parseMounts(contentThere(file))) {
            mounts.push_back({mount, top + mount.point});
        }
        return mounts;
    }

    /** What a process's mountinfo depends on: its namespace, and its root directory. */
    std::string viewOf(const std::string& process) const
    {
        const std::string folder = m_root + "/proc/" + process;
        const std::string mountNamespace = targetOf(folder + "/ns/mnt");
        return mountNamespace.empty() ? std::string() : mountNamespace + targetOf(folder + "/root");
    }

    /** A node and those that a file system holds together with it, of which its mounts show but one. */
    std::vector<std::string> membersWith(const Node& node) const
    {
        for (const std::string& system : namesThere(m_root + BTRFS)) {
            std::vector<std::string> members = namesThere(m_root + BTRFS + system + "/devices");
            if (std::find(members.begin(), members.end(), node.name) != members.end()) {
                return members;
            }
        }
        return {node.name};
    }

    /** What mounts name as their source. */
    std::set<std::string> sourcesOf(const std::vector<std::string>& names) const
    {
        std::set<std::string> sources;
        for (const std::string& name : names) {
            const std::string mapped = valueThere(m_root + "/sys/block/" + name + "/dm/name");
            sources.insert(mapped.empty() ? "/dev/" + name : "/dev/mapper/" + mapped);
            sources.insert("/dev/" + name);
        }
        return sources;
    }

    /** Keeps one way into a file system in mind. */
    void reach(const SeenMount& mount, const std::vector<std::string>& members)
    {
        const bool isNew = m_reached.insert(mount.device).second;
        if (isNew && std::all_of(members.begin(), members.end(),
                                 [&](const std::string& name) { return canAnswer(name, m_root); })) {
            m_uses.unreached.push_back(mount.path);
        }
    }

    void lookForMounts(const Node& node)
    {
        const std::vector<std::string> members = membersWith(node);
        const std::set<std::string> sources = sourcesOf(members);
        std::set<std::string> points;
        for (const SeenMount& mount : m_mounts) {
            const bool isSource = sources.count(mount.source) != 0;
            if (isSource || (mount.device == node.number && !node.number.empty())) {
                points.insert(mount.point);
            }
            if (isSource && mount.device.compare(0, 2, "0:") == 0) { // a number of its own
                reach(mount, members);
            }
        }
        for (const std::string& point : points) {
            m_uses.found.push_back(node.name + " is mounted on " + point);
        }
    }

    const std::string& m_root;
    Uses m_uses;
    const std::vector<Node> m_nodes;
    const std::vector<SeenMount> m_mounts;
    const std::vector<std::string> m_swaps;
    std::set<std::string> m_reached; ///< numbers of file systems
};

} // namespace

Uses usesOf(const std::string& disk, const std::string& root)
{
    return Search(disk, root).run([](const Node&) { return true; });
}

Uses usesBeyondMap(const std::string& disk, const std::string& root)
{
    return Search(disk, root).run([&](const Node& node) {
        return !multipathMap(node.name, root) && !isMapPartition(node.name, root);
    });
}

} // namespace ovra::disk
