#include "http/ConnectionThreads.h"

namespace arraysim {

ConnectionThreads::Taken ConnectionThreads::enqueue(std::function<void()> serveConnection)
{
    ++m_accepted;
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_waiting.push_back(std::move(serveConnection));
    if (m_waiting.size() > m_idle) {
        m_threads.emplace_back([this] { work(); });
    }
    m_wake.notify_one();
    return Taken(true);
}

void ConnectionThreads::shutdown()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    for (auto& thread : m_threads) {
        thread.join();
    }
}

void ConnectionThreads::work()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        ++m_idle;
        m_wake.wait(lock, [this] { return m_stopping || !m_waiting.empty(); });
        --m_idle;
        if (m_waiting.empty()) {
            return;
        }
        const auto serve = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        serve();
        lock.lock();
    }
}

void ownPort(socket_t listener)
{
    const int on = 1;
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

} // namespace arraysim
