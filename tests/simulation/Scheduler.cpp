#include "simulation/Scheduler.h"

#include <algorithm>

namespace simulation {
namespace {

constexpr Time STEP = 100;                     // what anything takes
constexpr Time LONGEST = 48 * (3600 * SECOND); // nothing that ends takes longer

} // namespace

void Scheduler::ownMemory(void* start, size_t bytes)
{
    m_own.push_back({static_cast<char*>(start), bytes});
    m_fresh.insert(m_fresh.end(), m_own.back().start, m_own.back().start + bytes);
}

Process& Scheduler::start(const std::string& name, std::function<void()> body)
{
    m_processes.push_back({});
    Process& process = m_processes.back();
    process.pid = 1000 + static_cast<int>(m_processes.size());
    process.name = name;
    process.memory = m_fresh;
    spawn(process, std::move(body));
    return process;
}

void Scheduler::spawn(Process& process, std::function<void()> body)
{
    m_tasks.push_back({&process, std::make_unique<Fiber>(std::move(body)), nullptr, 0});
}

void Scheduler::at(Time time, std::function<void()> work)
{
    m_due.emplace(time, std::move(work));
}

void Scheduler::kill(Process& process)
{
    process.isKilled = true;
}

void Scheduler::killAll()
{
    for (Process& process : m_processes) {
        kill(process);
    }
}

bool Scheduler::canRun(const Task& task) const
{
    return task.process->isKilled || task.until <= m_now || (task.isSo && task.isSo());
}

Scheduler::Task* Scheduler::choose()
{
    Task* chosen = nullptr;
    int best = 0;
    for (size_t i = 0; i < m_tasks.size(); ++i) {
        const size_t place = (m_last + i) % m_tasks.size();
        Task& task = m_tasks[place];
        const int rank = task.process->isKilled          ? 4
                         : task.process == m_preferred   ? 3
                         : task.process == m_lastProcess ? 2
                                                         : 1;
        if (rank > best && canRun(task)) {
            best = rank;
            chosen = &task;
        }
    }
    return chosen;
}

/** Puts what a process has for itself alone in its place; null: as it was before all of them. */
void Scheduler::enterMemory(Process* process)
{
    const auto exchange = [&](std::vector<char>& memory) {
        auto place = memory.begin();
        for (const Region& own : m_own) {
            std::swap_ranges(own.start, own.start + own.bytes, place);
            place += static_cast<std::ptrdiff_t>(own.bytes);
        }
    };
    for (Process* const one : {m_inMemory, process}) {
        if (one != nullptr && m_inMemory != process) {
            exchange(one->memory);
        }
    }
    m_inMemory = process;
}

void Scheduler::resume(Task& task)
{
    enterMemory(task.process);
    m_current = &task;
    task.isSo = nullptr;
    task.until = 0;
    task.fiber->resume();
    m_current = nullptr;
}

bool Scheduler::passTime()
{
    Time next = m_due.empty() ? NEVER : m_due.begin()->first;
    for (const Task& task : m_tasks) {
        next = std::min(next, task.until);
    }
    if (next == NEVER || next > LONGEST) {
        return false;
    }
    m_now = std::max(m_now, next);
    return true;
}

void Scheduler::doWhatIsDue()
{
    while (!m_due.empty() && m_due.begin()->first <= m_now) {
        const auto work = std::move(m_due.begin()->second);
        m_due.erase(m_due.begin());
        work();
    }
}

void Scheduler::run()
{
    for (;;) {
        doWhatIsDue();
        Task* const task = choose();
        if (task == nullptr) {
            if (passTime()) {
                continue;
            }
            m_isStuck = !m_tasks.empty();
            if (!m_isStuck) {
                enterMemory(nullptr);
                return;
            }
            killAll();
            continue;
        }
        m_lastProcess = task->process;
        resume(*task);
        const auto place =
            std::find_if(m_tasks.begin(), m_tasks.end(), [&](const Task& one) { return &one == task; });
        m_last = static_cast<size_t>(place - m_tasks.begin());
        if (task->fiber->hasEnded()) {
            m_tasks.erase(place);
        }
    }
}

bool Scheduler::reach(Point point)
{
    Process& process = current();
    if (process.isKilled) {
        return false;
    }
    m_now += STEP;
    ++m_steps;
    ++process.reached[static_cast<size_t>(point)];
    doWhatIsDue();
    m_preferred = nullptr;
    onPoint(process, point);
    if (m_preferred != nullptr && m_preferred != &process) {
        Fiber::pause();
    }
    return !process.isKilled;
}

bool Scheduler::wait(Time until, const std::function<bool()>& isSo)
{
    m_current->until = until;
    m_current->isSo = isSo;
    Fiber::pause();
    return !current().isKilled && isSo && isSo();
}

Time Scheduler::clock()
{
    Process& process = current();
    if (process.isKilled) {
        process.pastEnd += 3600 * SECOND;
    }
    return m_now + process.pastEnd;
}

} // namespace simulation
