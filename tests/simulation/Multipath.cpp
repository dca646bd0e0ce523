#include "simulation/Multipath.h"

#include <algorithm>

namespace simulation {
namespace {

constexpr const char* BLOCK = "/sys/block/";
constexpr const char* BY_ID = "/dev/disk/by-id/";
constexpr std::uint64_t SECTOR_BYTES = 512;

} // namespace

void Multipath::start(Time delay)
{
    m_isRunning = true;
    m_tree.put("/simulated/bin/multipath", "");
    m_tree.put("/proc/2/comm", "multipathd\n");
    m_kernel.onNamed = [this, delay](const Disk& disk) {
        m_scheduler.at(m_scheduler.now() + delay,
                       [this, name = disk.name, instance = disk.instance] { add(name, instance); });
    };
    m_kernel.onGone = [this, delay](const std::string& name, unsigned instance) {
        m_scheduler.at(m_scheduler.now() + delay, [this, name, instance] { drop(name, instance); });
    };
}

Map* Multipath::find(const std::string& nodeOrName)
{
    const auto found = std::find_if(m_maps.begin(), m_maps.end(), [&](const auto& map) {
        return map.second.node == nodeOrName || map.second.wwid == nodeOrName;
    });
    return found == m_maps.end() ? nullptr : &found->second;
}

Disk* Multipath::workingPath(const Map& map)
{
    for (const auto& [name, instance] : map.paths) {
        Disk* const disk = m_kernel.find(name);
        if (disk != nullptr && disk->instance == instance && m_kernel.isUp(disk->host)) {
            return disk;
        }
    }
    return nullptr;
}

void Multipath::add(const std::string& name, unsigned instance)
{
    Disk* const disk = m_kernel.find(name);
    if (disk == nullptr || disk->instance != instance || !disk->map.empty()) {
        return;
    }
    Map& map = m_maps["3" + disk->known.wwn];
    if (map.node.empty()) {
        unsigned number = 0;
        while (find("dm-" + std::to_string(number)) != nullptr) {
            ++number;
        }
        map.node = "dm-" + std::to_string(number);
        map.wwid = "3" + disk->known.wwn;
        const std::string folder = BLOCK + map.node;
        m_tree.put(folder + "/dev", "253:" + std::to_string(number) + "\n");
        m_tree.put(folder + "/ro", "0\n");
        m_tree.put(folder + "/dm/uuid", "mpath-" + map.wwid + "\n");
        m_tree.put(folder + "/dm/name", map.wwid + "\n");
        m_tree.put(folder + "/dm/suspended", "0\n");
        m_tree.put("/dev/mapper/" + map.wwid, "");
        m_tree.link(BY_ID + std::string("scsi-") + map.wwid, "../../" + map.node);
        m_tree.link(BY_ID + std::string("wwn-0x") + disk->known.wwn, "../../" + map.node);
    }
    map.paths[name] = instance;
    disk->map = map.node;
    m_tree.link(BLOCK + map.node + "/slaves/" + name, BLOCK + name);
    m_tree.link(BLOCK + name + "/holders/" + map.node, BLOCK + map.node);
    if (map.bytes == 0) {
        resize(map);
    }
}

void Multipath::drop(const std::string& name, unsigned instance)
{
    for (auto& [wwid, map] : m_maps) {
        const auto path = map.paths.find(name);
        if (path == map.paths.end() || path->second != instance) {
            continue;
        }
        map.paths.erase(path);
        m_tree.erase(BLOCK + map.node + "/slaves/" + name);
        if (map.paths.empty()) {
            remove(std::string(wwid));
        }
        return;
    }
}

void Multipath::remove(const std::string& name)
{
    const Map map = m_maps.at(name);
    m_maps.erase(name);
    for (const auto& [path, instance] : map.paths) {
        Disk* const disk = m_kernel.find(path);
        if (disk != nullptr && disk->instance == instance) {
            disk->map.clear();
            m_tree.erase(BLOCK + path + "/holders/" + map.node);
        }
    }
    m_tree.erase(BLOCK + map.node);
    m_tree.erase("/dev/mapper/" + map.wwid);
    for (const std::string& link : m_tree.namesIn(BY_ID)) {
        if (m_tree.targetOf(BY_ID + link) == "../../" + map.node) {
            m_tree.erase(BY_ID + link);
        }
    }
}

void Multipath::makeAnew(const std::function<bool(const Map&)>& isOpen, Time delay)
{
    std::vector<Map> gone;
    for (const auto& [wwid, map] : m_maps) {
        if (!isOpen(map)) {
            gone.push_back(map);
        }
    }
    std::reverse(gone.begin(), gone.end());
    for (const Map& map : gone) {
        remove(map.wwid);
    }
    m_scheduler.at(m_scheduler.now() + delay, [this, gone] {
        for (const Map& map : gone) {
            for (const auto& [name, instance] : map.paths) {
                add(name, instance);
            }
        }
    });
}

void Multipath::resize(Map& map)
{
    const Disk* const disk = workingPath(map);
    if (disk != nullptr) {
        map.bytes = disk->bytes;
        m_tree.put(BLOCK + map.node + "/size", std::to_string(map.bytes / SECTOR_BYTES) + "\n");
    }
}

std::string Multipath::listing() const
{
    std::string text;
    for (const auto& [wwid, map] : m_maps) {
        text += wwid + " " + map.node + " OVRA,TESSEL\nsize=1.0M features='0' hwhandler='0' wp=rw\n" +
                "`-+- policy='service-time 0' prio=1 status=active\n";
        for (const auto& [path, instance] : map.paths) {
            text += "  `- 1:0:0:1 " + path + " 8:16 active ready running\n";
        }
    }
    return text;
}

} // namespace simulation
