#include "simulation/Kernel.h"

#include <algorithm>
#include <utility>

namespace simulation {
namespace {

constexpr const char* BLOCK = "/sys/block/";
constexpr const char* DEVICES = "/sys/class/scsi_device/";
constexpr const char* BY_ID = "/dev/disk/by-id/";
constexpr std::uint64_t SECTOR_BYTES = 512;
constexpr Time REPLACEMENT = 120 * SECOND; // before a session that is down is given up

std::string numberOf(const std::string& name)
{
    return "8:" + std::to_string(16 * (name.back() - 'a'));
}

} // namespace

std::string page83(const Unit& unit)
{
    const size_t length = unit.wwn.size() / 2;
    constexpr char BINARY = 1;
    constexpr char NAA = 3;
    std::string page = {0, static_cast<char>(0x83),  0, static_cast<char>(length + 4), BINARY, NAA,
                        0, static_cast<char>(length)};
    for (size_t i = 0; i < length; ++i) {
        page += static_cast<char>(std::stoul(unit.wwn.substr(2 * i, 2), nullptr, 16));
    }
    return page;
}

Kernel::Kernel(Scheduler& scheduler, Tree& tree, const Habits& habits)
    : m_scheduler(scheduler), m_tree(tree), m_habits(habits)
{
}

void Kernel::add(Session session)
{
    const std::string host = session.host;
    const std::string folder = "/sys/class/iscsi_session/session" + host;
    m_tree.link(folder,
                "../../devices/platform/host" + host + "/session" + host + "/iscsi_session/session" + host);
    m_tree.put(folder + "/state", "LOGGED_IN\n");
    m_tree.put(folder + "/initiatorname", std::string(INITIATOR) + "\n");
    m_tree.put(folder + "/targetname", "iqn.2020-01.test:target" + host + "\n");
    m_tree.put("/sys/class/scsi_host/host" + host + "/scan", "");
    m_sessions.emplace(host, std::move(session));
}

std::vector<std::string> Kernel::hosts() const
{
    std::vector<std::string> hosts;
    for (const auto& [host, session] : m_sessions) {
        hosts.push_back(host);
    }
    return hosts;
}

Disk* Kernel::find(const std::string& name)
{
    const auto found = m_disks.find(name);
    return found == m_disks.end() ? nullptr : &found->second;
}

Disk* Kernel::at(const std::string& address)
{
    const auto found = std::find_if(m_disks.begin(), m_disks.end(),
                                    [&](const auto& disk) { return disk.second.address() == address; });
    return found == m_disks.end() ? nullptr : &found->second;
}

Unit Kernel::unitOf(const Disk& disk) const
{
    const Session& session = m_sessions.at(disk.host);
    const std::map<unsigned, Unit> units = session.isUp ? session.units() : std::map<unsigned, Unit>();
    const auto found = units.find(disk.number);
    return found == units.end() ? Unit() : found->second;
}

std::string Kernel::freeName() const
{
    std::string name = "sda";
    while (m_disks.count(name) != 0) {
        ++name.back();
    }
    return name;
}

void Kernel::scan(const std::string& host)
{
    const Session& session = m_sessions.at(host);
    if (!session.isUp) {
        return;
    }
    for (const auto& [number, unit] : session.units()) {
        Disk disk;
        disk.host = host;
        disk.number = number;
        if (at(disk.address()) != nullptr) {
            continue;
        }
        disk.instance = ++m_instances;
        disk.name = freeName();
        disk.known = unit;
        disk.bytes = unit.bytes;
        m_disks[disk.name] = disk;
        m_tree.put(DEVICES + disk.address() + "/device/type", "0\n");
        m_scheduler.at(m_scheduler.now() + m_habits.diskDelay,
                       [this, name = disk.name, instance = disk.instance] {
                           const Disk* const made = find(name);
                           if (made != nullptr && made->instance == instance) {
                               show(*made);
                               if (!std::exchange(m_isEventLost, false)) {
                                   tellUdev(name, instance);
                               }
                           }
                       });
    }
}

void Kernel::show(const Disk& disk)
{
    const std::string folder = BLOCK + disk.name;
    m_tree.put("/dev/" + disk.name, "");
    m_tree.put(folder + "/dev", numberOf(disk.name) + "\n");
    m_tree.put(folder + "/size", std::to_string(disk.bytes / SECTOR_BYTES) + "\n");
    m_tree.put(folder + "/ro", "0\n");
    m_tree.link(folder + "/device", "../../../" + disk.address());
    const std::string device = DEVICES + disk.address() + "/device";
    m_tree.put(device + "/block/" + disk.name + "/dev", numberOf(disk.name) + "\n");
    for (const std::string& place : {folder + "/device", device}) {
        m_tree.put(place + "/delete", "");
        m_tree.put(place + "/rescan", "");
        m_tree.put(place + "/vpd_pg83", page83(disk.known));
        m_tree.put(place + "/wwid", "naa." + disk.known.wwn + "\n");
    }
    showState(disk);
}

void Kernel::showState(const Disk& disk)
{
    for (const std::string& place : {BLOCK + disk.name, DEVICES + disk.address()}) {
        m_tree.put(place + "/device/state", disk.state + "\n");
    }
}

void Kernel::remove(Disk& disk)
{
    const std::string name = disk.name;
    const unsigned instance = disk.instance;
    m_tree.erase("/dev/" + name);
    m_tree.erase(BLOCK + name);
    m_tree.erase(DEVICES + disk.address());
    m_disks.erase(name);
    tellUdev(name, instance);
    if (onGone) {
        onGone(name, instance);
    }
}

void Kernel::rescan(Disk& disk)
{
    const Unit unit = unitOf(disk);
    if (!unit.id.empty()) {
        disk.bytes = unit.bytes;
        disk.known = unit;
        show(disk);
    }
}

void Kernel::setState(const std::string& host, const std::string& state)
{
    for (auto& [name, disk] : m_disks) {
        if (disk.host == host) {
            disk.state = state;
            if (m_tree.exists(BLOCK + name)) {
                showState(disk);
            }
        }
    }
}

void Kernel::setUp(const std::string& host, bool isUp)
{
    Session& session = m_sessions.at(host);
    if (session.isUp == isUp) {
        return;
    }
    session.isUp = isUp;
    ++m_changes;
    m_tree.put("/sys/class/iscsi_session/session" + host + "/state", isUp ? "LOGGED_IN\n" : "FAILED\n");
    setState(host, isUp ? "running" : "blocked");
    if (!isUp) {
        m_scheduler.at(m_scheduler.now() + REPLACEMENT, [this, host] {
            if (!m_sessions.at(host).isUp) {
                setState(host, "transport-offline");
            }
        });
    }
}

void Kernel::tellUdev(const std::string& name, unsigned instance)
{
    ++m_udevEvents;
    m_udevFree = std::max(m_udevFree, m_scheduler.now()) + m_habits.udevDelay;
    m_scheduler.at(m_udevFree, [this, name, instance] {
        --m_udevEvents;
        Disk* const disk = find(name);
        if (disk != nullptr && disk->instance == instance) {
            this->name(*disk);
            return;
        }
        for (const std::string& link :
             m_tree.namesIn(BY_ID)) { // it is gone: but a later one may have its name
            if (m_tree.targetOf(BY_ID + link) == "../../" + name && (disk == nullptr || !disk->isNamed)) {
                m_tree.erase(BY_ID + link);
            }
        }
    });
}

void Kernel::name(Disk& disk)
{
    disk.isNamed = true;
    for (const char* const kind : {"scsi-3", "wwn-0x"}) {
        m_tree.link(std::string(BY_ID) + kind + disk.known.wwn, "../../" + disk.name);
    }
    if (onNamed) {
        onNamed(disk);
    }
}

} // namespace simulation
