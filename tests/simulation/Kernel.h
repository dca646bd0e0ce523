#ifndef SIMULATION_KERNEL_H
#define SIMULATION_KERNEL_H

#include "simulation/Scheduler.h"
#include "simulation/SimulatedArray.h"
#include "simulation/Tree.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace simulation {

/** A SCSI disk, from the scan that finds it to its removal. */
struct Disk
{
    unsigned instance = 0; ///< no two disks have the same, whatever their names
    std::string name;      ///< "sdb"
    std::string host;      ///< "1"
    unsigned number = 0;
    Unit known; ///< what it said it is when it was found
    std::string state = "running";
    std::uint64_t bytes = 0;
    std::string map;      ///< the multipath node on it
    bool isNamed = false; ///< udev has come to it
    Time writtenAt = 0;   ///< when data came that wait for it in memory; 0: none wait

    std::string address() const { return host + ":0:0:" + std::to_string(number); }
};

/** A SCSI host of the kernel, and the way to a target. */
struct Session
{
    std::string host;
    std::function<std::map<unsigned, Unit>()> units; ///< by number
    bool isUp = true;
};

/** How this host and its tools behave. */
struct Habits
{
    Time udevDelay = 20000; ///< from an event to the names in /dev/disk/by-id
    Time diskDelay = 2000;  ///< from a scan to a disk's block device
};

/** The SCSI disks of a host as Linux keeps them, their files in /sys, and what udev makes of them. */
class Kernel
{
public:
    Kernel(Scheduler& scheduler, Tree& tree, const Habits& habits);

    void add(Session session);
    /** Asks a target what there is, and makes disks of what is new. */
    void scan(const std::string& host);
    void remove(Disk& disk);
    /** Reads a disk's size and identity again. */
    void rescan(Disk& disk);
    /** The network to a target. */
    void setUp(const std::string& host, bool isUp);

    Disk* find(const std::string& name);
    Disk* at(const std::string& address);
    std::map<std::string, Disk>& disks() { return m_disks; }
    /** The unit that a disk reaches now; an empty ID: none. */
    Unit unitOf(const Disk& disk) const;
    bool isUp(const std::string& host) const { return m_sessions.at(host).isUp; }
    std::vector<std::string> hosts() const;

    unsigned long changes() const { return m_changes; } ///< of the sessions

    bool isUdevAtRest() const { return m_udevEvents == 0; }
    /** udev does not come to the next disk at all. */
    void loseEvent() { m_isEventLost = true; }
    void stallUdev(Time time) { m_udevFree = std::max(m_udevFree, m_scheduler.now() + time); }

    std::function<void(const Disk&)> onNamed; ///< udev has come to it
    std::function<void(const std::string& name, unsigned instance)> onGone;

private:
    void show(const Disk& disk);
    void showState(const Disk& disk);
    void setState(const std::string& host, const std::string& state);
    void tellUdev(const std::string& name, unsigned instance);
    void name(Disk& disk);
    std::string freeName() const;

    Scheduler& m_scheduler;
    Tree& m_tree;
    const Habits& m_habits;
    std::map<std::string, Session> m_sessions;
    std::map<std::string, Disk> m_disks;
    unsigned long m_changes = 0;
    unsigned m_instances = 0;
    Time m_udevFree = 0; ///< when udev has done what it was told so far
    unsigned m_udevEvents = 0;
    bool m_isEventLost = false;
};

/** Page 0x83 of a unit. */
std::string page83(const Unit& unit);

} // namespace simulation

#endif
