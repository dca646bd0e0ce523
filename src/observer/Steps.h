#ifndef OBSERVER_STEPS_H
#define OBSERVER_STEPS_H

#include <tessel/Observer.h>

#include <chrono>
#include <string>
#include <utility>

namespace ovra::tessel {

/** A step on the disks of this host, within the call that the thread is in. */
void tellStep(HostEvent::Step step, const std::string& device, const std::string& what = "",
              double seconds = 0);

/** Tells of a scan when it goes out of scope. */
class TimedScan
{
public:
    explicit TimedScan(std::string what) : m_what(std::move(what)) {}
    ~TimedScan();
    TimedScan(const TimedScan&) = delete;
    TimedScan& operator=(const TimedScan&) = delete;

private:
    const std::string m_what;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/** Adds the time until it goes out of scope to what the thread's calls have waited for the rescan lock. */
class TimedWait
{
public:
    TimedWait() = default;
    ~TimedWait();
    TimedWait(const TimedWait&) = delete;
    TimedWait& operator=(const TimedWait&) = delete;

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace ovra::tessel

#endif
