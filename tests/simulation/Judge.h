#ifndef SIMULATION_JUDGE_H
#define SIMULATION_JUDGE_H

#include "simulation/Kernel.h"
#include "simulation/Multipath.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace simulation {

/** How a process does what it is about. */
enum class Manner
{
    WHOLE,        ///< by LocalDisk
    STEP_BY_STEP, ///< by the single operations
    TIDY          ///< all dead disks
};

/** What a process is about. */
struct Errand
{
    std::string lun; ///< empty: all
    Manner manner = Manner::STEP_BY_STEP;
    bool isReleasing = false; ///< its disk is taken away
};

/** What happened with a LUN. */
struct History
{
    bool hasSingleSteps = false; ///< after which a disk may stay
    bool isCutOff = false;       ///< a call was killed or has failed, and no later one has ended well
    Time cutOffAt = 0;           ///< when the last one was
    bool isTakenAway = false;    ///< by an administrator
    unsigned errands = 0;        ///< at work
};

/** Knows what is, and finds fault with what a process does that does not know it. */
class Judge
{
public:
    Judge(Scheduler& scheduler, SimulatedArray& array, Kernel& kernel, Multipath& multipath)
        : m_scheduler(scheduler), m_array(array), m_kernel(kernel), m_multipath(multipath)
    {
    }

    void begins(const Process& process, const Errand& errand);
    std::optional<Errand> errandOf(const Process& process) const;
    void ends(const Process& process, bool isWell);
    void isKilled(const Process& process);

    /** @param name of the disk, or of the map that it is a path of. */
    void asked(const Process& process, const std::string& name, const Disk& disk, const Unit& answer);
    void removes(const Process& process, const Disk& disk);
    void removes(const Process& process, const Map& map);
    void readsState(const Process& process, const Disk& disk);
    /** The rescan script, with -r: a process starts it, and it removes a disk. */
    void startsScript(const Process& process);
    void scriptRemoves(int starter, const Disk& disk);
    void handsOut(const Process& process, const std::string& path);
    void scans(const Process& process);
    void scansWithoutLock() { m_isScannedWithoutLock = true; }
    void sends(const Process& process, const std::string& request, bool isChange);
    void isRefused(const Process& process) { m_unread.erase(process.pid); }
    void isLost() { m_isAnswerLost = true; }
    void isTakenAway(const std::string& lun) { m_histories[lun].isTakenAway = true; }
    void hasFlushed(const Process& process, const Disk& disk);
    /** Dead disks were tidied when nobody else was at work. */
    void isTidy() { m_isTidy = true; }
    void atRest(int semaphore);
    /** Does not look who has the lock: what comes of it is to be found. */
    void ignoreLock() { m_isLockIgnored = true; }

    const std::string& fault() const { return m_fault; }
    /** How often what was met. */
    const std::map<std::string, unsigned long>& met() const { return m_met; }
    void meets(const std::string& what) { ++m_met[what]; }
    void find(const std::string& fault);

private:
    struct Asked
    {
        unsigned instance;
        Unit known; ///< under whose names it stood
        std::string id;
        unsigned long changes; ///< of what can be seen, at that time
        unsigned inquiries;    ///< of the process, up to this one
        unsigned pauses;
    };

    void handsOut(const Process& process, const std::string& lun, const std::string& path,
                  const std::string& name);
    bool isInUse(const Process& process, const Disk& disk);
    bool hasAnswered(const Process& process, const std::string& lun) const;
    bool isLate(const Process& process, const Asked& asked) const;

    bool isOurs(const Disk& disk) const { return disk.host == "1" || disk.host == "2"; }
    unsigned long changes() const { return m_array.changes() + m_kernel.changes(); }
    bool isInMapThatStays(const Disk& disk) const;
    void disksAtRest();
    void arrayAtRest();

    Scheduler& m_scheduler;
    SimulatedArray& m_array;
    Kernel& m_kernel;
    Multipath& m_multipath;
    std::map<int, Errand> m_errands;
    std::map<int, Time> m_begins;                 ///< of these
    std::set<std::pair<int, unsigned>> m_flushed; ///< disks that were written back in an errand
    std::map<std::string, unsigned long> m_met;
    std::map<std::string, History> m_histories;
    std::map<std::pair<int, std::string>, Asked> m_asked;     ///< by process and disk
    std::map<std::pair<int, unsigned>, std::string> m_states; ///< of disks, as processes have read them last
    std::set<std::pair<int, unsigned>> m_away;                ///< of these, those that were away once
    std::map<int, std::set<unsigned>> m_awayAtStart;          ///< of the script that a process has started
    std::map<int, std::string> m_unread; ///< a change that was sent, and of which nothing was read since
    bool isWithoutLock(const Process& process) const { return process.undo == 0 && !m_isLockIgnored; }

    bool m_isLockIgnored = false;
    bool m_isScannedWithoutLock = false;
    bool m_isAnswerLost = false;
    bool m_isAnyKilled = false;
    bool m_isDetachCutOff = false; ///< by single steps: it takes apart what is the host's own
    bool m_isTidy = false;
    std::string m_fault;
};

} // namespace simulation

#endif
