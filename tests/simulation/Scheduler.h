#ifndef SIMULATION_SCHEDULER_H
#define SIMULATION_SCHEDULER_H

#include "simulation/Fiber.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace simulation {

using Time = std::int64_t; ///< microseconds since the host was started
constexpr Time SECOND = 1000000;
constexpr Time NEVER = INT64_MAX;

/** What a process does to the world around it: another one may go on there, and it may be killed there. */
enum class Point
{
    REQUEST, ///< before it is sent, and before its answer is read
    COMMAND,
    READ,  ///< of a file
    WRITE, ///< to a file of the kernel
    INQUIRY,
    LOCK,
    PAUSE,
    COUNT
};

/** A device that a process has open. */
struct OpenDevice
{
    std::string name;
    unsigned instance; ///< of the disk, or of the first that works of a map
    Time since;
};

/** A process of the host. */
struct Process
{
    int pid;
    std::string name;
    bool isKilled = false; ///< it ends without another effect
    std::array<unsigned, size_t(Point::COUNT)> reached{};
    unsigned count(Point point) const { return reached[size_t(point)]; }
    int undo = 0;                   ///< what the kernel adds to the semaphore when it ends
    std::map<int, OpenDevice> open; ///< by descriptor
    std::vector<char> memory;       ///< of what each process has for itself alone
    Time pastEnd = 0;               ///< what the clock of a killed one is ahead
    int trouble = -1;               ///< of its next request
    unsigned noDescriptors = 0;     ///< files that it cannot open now, for want of these
    unsigned noProcesses = 0;       ///< tools and threads that it cannot start now
    bool wasRefused = false;        ///< one of all these
};

/** Processes that run one at a time, in an order that depends on nothing but what is chosen; a clock of its
 * own. */
class Scheduler
{
public:
    /** What is to happen at a point that a process has reached. */
    std::function<void(Process&, Point)> onPoint;
    /** Objects of which each process has its own. */
    void ownMemory(void* start, size_t bytes);

    Process& start(const std::string& name, std::function<void()> body);
    /** Another thread of a process. */
    void spawn(Process& process, std::function<void()> body);
    /** Does it at a time, as the kernel or another machine would. */
    void at(Time time, std::function<void()> work);
    /** Until nobody has anything to do. */
    void run();
    /** Who goes on next, if it can. */
    void prefer(const Process* process) { m_preferred = process; }
    void kill(Process& process);
    void killAll();

    // From within a process.
    Process& current() { return *m_current->process; }
    /** @return false when the process is killed: it must not have an effect any more. */
    bool reach(Point point);
    /** Waits until it is so, at most until a time. @return whether it is so; false also for a killed process.
     */
    bool wait(Time until, const std::function<bool()>& isSo);
    Time now() const { return m_now; }
    /** The clock as the running process sees it: the deadlines of a killed one pass at once. */
    Time clock();

    std::deque<Process>& processes() { return m_processes; }
    bool isStuck() const { return m_isStuck; }
    unsigned long steps() const { return m_steps; } ///< points that were reached

private:
    struct Task
    {
        Process* process;
        std::unique_ptr<Fiber> fiber;
        std::function<bool()> isSo; ///< what it waits for
        Time until = 0;
    };

    bool canRun(const Task& task) const;
    Task* choose();
    bool passTime();
    void doWhatIsDue();
    void resume(Task& task);
    void enterMemory(Process* process);

    Time m_now = 0;
    std::deque<Process> m_processes;
    std::deque<Task> m_tasks;
    std::multimap<Time, std::function<void()>> m_due;
    Task* m_current = nullptr;
    size_t m_last = 0; ///< the place of the task that ran last
    const Process* m_lastProcess = nullptr;
    const Process* m_preferred = nullptr;
    Process* m_inMemory = nullptr;
    struct Region
    {
        char* start;
        size_t bytes;
    };
    std::vector<Region> m_own;
    std::vector<char> m_fresh;
    bool m_isStuck = false;
    unsigned long m_steps = 0;
};

} // namespace simulation

#endif
