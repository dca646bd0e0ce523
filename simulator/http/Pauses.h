#ifndef SIMULATOR_HTTP_PAUSES_H
#define SIMULATOR_HTTP_PAUSES_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace arraysim {

/** Waits that the end of the server cuts short. Thread-safe. */
class Pauses
{
public:
    void wait(unsigned milliseconds)
    {
        if (milliseconds == 0) {
            return;
        }
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ends.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return m_over; });
    }
    bool areOver()
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_over;
    }
    void end()
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_over = true;
        m_ends.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_ends;
    bool m_over = false;
};

} // namespace arraysim

#endif
