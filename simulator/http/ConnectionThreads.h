#ifndef SIMULATOR_HTTP_CONNECTIONTHREADS_H
#define SIMULATOR_HTTP_CONNECTIONTHREADS_H

#include <httplib.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace arraysim {

/**
 * One thread for each open connection: a kept-alive connection holds its thread while it is idle, so
 * a pool of a fixed size would let idle clients lock out others. Threads are used again.
 */
class ConnectionThreads : public httplib::TaskQueue
{
public:
    /** accepted counts the connections. */
    explicit ConnectionThreads(std::atomic<unsigned long>& accepted) : m_accepted(accepted) {}

    /** Newer releases of the HTTP library want to know whether the connection is taken. */
    using Taken = decltype(std::declval<httplib::TaskQueue&>().enqueue({}));
    Taken enqueue(std::function<void()> serveConnection) override;
    void shutdown() override;

private:
    void work();

    std::atomic<unsigned long>& m_accepted;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_waiting;
    std::vector<std::thread> m_threads;
    std::size_t m_idle = 0;
    bool m_stopping = false;
};

/** Socket options of a listener: unlike the library's own, they let no other process share the port. */
void ownPort(socket_t listener);

} // namespace arraysim

#endif
