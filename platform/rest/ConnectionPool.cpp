#include "ConnectionPool.h"

#include "LibraryLock.h"
#include "SigpipeGuard.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <openssl/crypto.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace ovra::rest {

namespace {

constexpr size_t MOST_IDLE = 16;
/// libcurl does not use a connection that was idle for longer (CURLOPT_MAXAGE_CONN).
constexpr auto LONGEST_IDLE = std::chrono::seconds(118);

/// OpenSSL's own exit handler would take it away under threads that still send and under static destructors
/// that log out. It is registered by whoever starts OpenSSL first: therefore when this library is loaded.
__attribute__((constructor)) void startTlsWithoutExitHandler()
{
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

void makeHandles(Connection& connection)
{
    connection.multi.reset(curl_multi_init());
    connection.handle.reset(curl_easy_init());
    // A new connection closes the one that it replaces.
    if (!connection.multi || !connection.handle ||
        curl_multi_setopt(connection.multi.get(), CURLMOPT_MAXCONNECTS, 1L) != CURLM_OK) {
        throw std::bad_alloc();
    }
}

} // namespace

void CurlCleanup::operator()(CURL* handle) const
{
    const SigpipeGuard guard;
    curl_easy_cleanup(handle);
}

void MultiCleanup::operator()(CURLM* multi) const
{
    const SigpipeGuard guard;
    curl_multi_cleanup(multi);
}

bool isQuiet(const Connection& connection)
{
    if (connection.socket == CURL_SOCKET_BAD) {
        return false;
    }
    pollfd polled = {connection.socket, POLLIN, 0};
    return poll(&polled, 1, 0) == 0;
}

ConnectionPool& ConnectionPool::instance()
{
    const std::lock_guard<std::mutex> lock(libraryMutex());
    return processWide<ConnectionPool>();
}

ConnectionPool::ConnectionPool()
{
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
        throw std::runtime_error("libcurl cannot be started");
    }
    // For the end of the process, and for the library's when it is unloaded.
    std::atexit([] { instance().end(); });
}

Connection ConnectionPool::take(const std::string& key)
{
    Connection taken = {key, nullptr, nullptr, CURL_SOCKET_BAD, 0, getpid()};
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        leaveToParent();
        taken.generation = m_generation;
        const auto found = std::find_if(m_idle.rbegin(), m_idle.rend(),
                                        [&](const Idle& idle) { return idle.connection.key == key; });
        if (found != m_idle.rend()) {
            taken.multi = std::move(found->connection.multi);
            taken.handle = std::move(found->connection.handle);
            taken.socket = found->connection.socket;
            m_idle.erase(std::next(found).base());
        }
    }
    if (!taken.handle) {
        makeHandles(taken);
    }
    return taken;
}

void ConnectionPool::giveBack(Connection connection)
{
    IdleList node;
    node.push_back(Idle{std::move(connection), Clock::now()});
    IdleList surplus; // closed after the lock was released
    const std::lock_guard<std::mutex> lock(libraryMutex());
    leaveToParent();
    const Connection& given = node.front().connection;
    if (given.owner != m_owner) {
        m_parents.splice(m_parents.end(), node);
    } else if (m_ended || given.generation != m_generation) {
        surplus.splice(surplus.end(), node);
    } else {
        m_idle.splice(m_idle.end(), node);
    }
    surplus.splice(surplus.end(), takeSurplus());
}

void ConnectionPool::clear()
{
    IdleList closed; // after the lock was released
    const std::lock_guard<std::mutex> lock(libraryMutex());
    leaveToParent();
    ++m_generation;
    closed.swap(m_idle);
}

void ConnectionPool::end()
{
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        m_ended = true;
    }
    clear();
}

void ConnectionPool::leaveToParent()
{
    const pid_t self = getpid();
    if (m_owner == self) {
        return;
    }
    // Closing them would send a TLS close on connections that the parent still uses.
    m_parents.splice(m_parents.end(), m_idle);
    m_owner = self;
}

ConnectionPool::IdleList ConnectionPool::takeSurplus()
{
    const Clock::time_point oldest = Clock::now() - LONGEST_IDLE;
    IdleList surplus;
    while (!m_idle.empty() && (m_idle.size() > MOST_IDLE || m_idle.front().since < oldest)) {
        surplus.splice(surplus.end(), m_idle, m_idle.begin());
    }
    return surplus;
}

} // namespace ovra::rest
