#ifndef SIMULATION_MULTIPATH_H
#define SIMULATION_MULTIPATH_H

#include "simulation/Kernel.h"

#include <map>
#include <set>
#include <string>

namespace simulation {

/** A map of multipathd. */
struct Map
{
    std::string node; ///< "dm-0"
    std::string wwid; ///< its name, too
    std::uint64_t bytes = 0;
    std::map<std::string, unsigned> paths; ///< instances by name; some may have gone
};

/** multipathd: makes maps of the disks that udev has named, and drops the paths that have gone. */
class Multipath
{
public:
    Multipath(Scheduler& scheduler, Tree& tree, Kernel& kernel)
        : m_scheduler(scheduler), m_tree(tree), m_kernel(kernel)
    {
    }

    /** From now on it is at work, so long behind udev. */
    void start(Time delay);
    bool isRunning() const { return m_isRunning; }
    Map* find(const std::string& nodeOrName);
    /** A path that works; null: none. */
    Disk* workingPath(const Map& map);
    void remove(const std::string& name);
    /** All that are not open go, and come again a while later, under other numbers. */
    void makeAnew(const std::function<bool(const Map&)>& isOpen, Time delay);
    void resize(Map& map);
    /** What multipath -ll prints. */
    std::string listing() const;

private:
    void add(const std::string& name, unsigned instance);
    void drop(const std::string& name, unsigned instance);

    Scheduler& m_scheduler;
    Tree& m_tree;
    Kernel& m_kernel;
    bool m_isRunning = false;
    std::map<std::string, Map> m_maps; ///< by wwid
};

} // namespace simulation

#endif
