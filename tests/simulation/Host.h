#ifndef SIMULATION_HOST_H
#define SIMULATION_HOST_H

#include "simulation/Judge.h"
#include "simulation/Kernel.h"
#include "simulation/Multipath.h"
#include "simulation/Scenario.h"
#include "simulation/Scheduler.h"
#include "simulation/SimulatedArray.h"
#include "simulation/Tree.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace simulation {

constexpr int FIRST_DESCRIPTOR = 1 << 20; ///< of open devices: no file of this machine has one so high

/** A fault that a run has on purpose, for those who look whether it is found. */
enum class Weakness
{
    NONE,
    LOCK_OPEN,       ///< the lock is given to everybody
    UNDO_FORGOTTEN,  ///< by the kernel, of the lock
    SENT_TWICE,      ///< each change, behind the back of who sends it
    REMOVED_BY_NAME, ///< a disk, without a look who it is by now
    WITHOUT_LOCK     ///< a release without the lock, and without a look behind
};

/** A host, its processes and the array: one run. */
class Host
{
public:
    Host(SimulatedArray& array, const Scenario& scenario, Weakness weakness, bool isLogging);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /** Runs it to its end. @return what was wrong; empty: nothing. */
    std::string run();
    const std::vector<std::string>& log() const { return m_log; }

    /** Of the process that runs; null outside of all. */
    static Host* ofRunning();

    Scheduler scheduler;
    Tree tree;
    Habits habits;
    SimulatedArray& array;
    Kernel kernel;
    Multipath multipath;
    Judge judge;
    const Weakness weakness;

    unsigned long steps() const { return scheduler.steps(); }

    void note(const std::string& what);

    // The semaphore.
    int semop(int change, bool isUndone, Time limit);
    void setFree();
    int lastHolder() const { return m_lastHolder; }

    Reply exchange(const SentRequest& request);

    void pause(Time time);
    bool waitForCondition(const void* condition, Time end);
    void tellCondition(const void* condition) { m_told.insert(condition); }

    // What a process does to disks.
    std::optional<std::string> readFile(const std::string& path);
    bool writeFile(const std::string& path, const std::string& text);
    int run(const std::string& command);
    std::string print(const std::string& command);
    struct Answer
    {
        std::string page; ///< 0x83
        bool hasNoUnit = false;
    };
    /** Neither a page nor the word that nothing is there: no answer. */
    Answer inquire(const std::string& disk);
    int openDevice(const std::string& path);
    void closeDevice(int descriptor);
    /** Data that wait for the disk. */
    void write(const std::string& disk);
    /** Writes back what waits for a disk. */
    bool flush(const std::string& disk);

private:
    Disk* diskOf(const std::string& name);
    bool isOpen(const Map& map);
    bool removeMap(const std::string& name);
    void onPoint(Process& process, Point point);
    void happen(Process& process, const Event& event);
    void kill(Process& process, bool isAgain);
    void takeAway(const std::string& lun);
    bool isHarmful() const { return m_scenario.isScriptHarmful; }
    void scanAll(bool mayRemove, int starter);

    const Scenario& m_scenario;
    int m_semaphore = 1;
    int m_lastHolder = 0;
    std::vector<Process*> m_clients;
    std::map<int, std::vector<Event>> m_events; ///< that have not happened, by process
    std::set<const void*> m_told;               ///< conditions whose waiters go on
    int m_lastDescriptor = FIRST_DESCRIPTOR;
    std::map<int, unsigned> m_scripts; ///< that run, by the process that has started them
    const bool m_isLogging;
    std::vector<std::string> m_log;
};

/** What a client does: all of its jobs, each again where a call fails. */
void doJobs(Host& host, const std::vector<Job>& jobs);
/** Removes all dead disks, when all others are done. */
void doTidy(Host& host);
/** What another process does for one that was killed. */
void doAgain(Host& host, const Errand& errand);

} // namespace simulation

#endif
