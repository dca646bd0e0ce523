#include "ConnectionPool.h"

#include "LibraryLock.h"
#include "SigpipeGuard.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>
#include <openssl/crypto.h>
#include <openssl/rand.h>
#include <poll.h>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

namespace ovra::rest {

namespace {

constexpr size_t MOST_IDLE_OF_SERVER = 64;
constexpr rlim_t MOST_IDLE = 512;
constexpr rlim_t FEWEST_IDLE = 16;
constexpr rlim_t SHARE_OF_DESCRIPTORS = 4; ///< the rest are the application's
/// libcurl does not use a connection that was idle for longer (CURLOPT_MAXAGE_CONN).
constexpr auto LONGEST_IDLE = std::chrono::seconds(118);
constexpr auto BETWEEN_LOOKS = std::chrono::seconds(1); ///< for those, among hundreds

/// OpenSSL's own exit handler would take it away under threads that still send and under static destructors
/// that log out. It is registered by whoever starts OpenSSL first: therefore when this library is loaded.
__attribute__((constructor)) void startTlsWithoutExitHandler()
{
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

/// Of all servers: what the process may open, divided with the application.
size_t mostIdle()
{
    rlimit open = {};
    return getrlimit(RLIMIT_NOFILE, &open) != 0
               ? FEWEST_IDLE
               : std::clamp(open.rlim_cur / SHARE_OF_DESCRIPTORS, FEWEST_IDLE, MOST_IDLE);
}

/// OpenSSL starts once in a process. Where it cannot, for want of memory, it does not say so to libcurl, and
/// may end the process in the midst of a handshake: nothing is sent then. Where memory is short it is not
/// begun.
void startCrypto()
{
    constexpr size_t ROOM = 4UL * 1024 * 1024; // more than it takes
    void* const room = OPENSSL_malloc(ROOM);
    if (room == nullptr) {
        throw std::bad_alloc();
    }
    OPENSSL_free(room);
    if (OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT | OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr) != 1 ||
        OSSL_LIB_CTX_get0_global_default() == nullptr || RAND_status() != 1) {
        throw std::runtime_error("OpenSSL cannot be started");
    }
}

/// Before, a handle keeps a pointer into the header lines of its last answer, which are gone: where the first
/// line of the next one goes on from none, libcurl writes to it.
constexpr unsigned KEEPS_NO_LAST_HEADER = 0x080200;
/// Seen by `bench/counts`: what OpenSSL sends goes through libcurl, which asks for no SIGPIPE.
constexpr unsigned SENDS_WITHOUT_SIGNAL = 0x075801;

/// What is missing of the two; the first keeps the connection.
void makeHandles(Connection& connection)
{
    if (!connection.multi) {
        connection.multi.reset(curl_multi_init());
        // A new connection closes the one that it replaces.
        if (!connection.multi ||
            curl_multi_setopt(connection.multi.get(), CURLMOPT_MAXCONNECTS, 1L) != CURLM_OK) {
            throw std::bad_alloc();
        }
    }
    connection.handle.reset(curl_easy_init());
    if (!connection.handle) {
        throw std::bad_alloc();
    }
}

} // namespace

void CurlCleanup::operator()(CURL* handle) const
{
    curl_easy_cleanup(handle); // sends nothing: the connection is the multi handle's
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

ConnectionPool::ConnectionPool() : ConnectionPool(curl_version_info(CURLVERSION_NOW)->version_num) {}

ConnectionPool::ConnectionPool(unsigned curlVersion)
    : m_keepsLastHeader(curlVersion < KEEPS_NO_LAST_HEADER),
      m_sendsWithoutSignal(curlVersion >= SENDS_WITHOUT_SIGNAL), m_most(mostIdle())
{
    startCrypto();
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
        throw std::runtime_error("libcurl cannot be started");
    }
    // For the end of the process, and for the library's when it is unloaded.
    std::atexit([] { instance().end(); });
}

Connection ConnectionPool::take(const std::string& key)
{
    Connection taken;
    {
        const pid_t self = getpid();
        const std::lock_guard<std::mutex> lock(libraryMutex());
        leaveToParent(self);
        const auto list = m_idle.find(key);
        if (list != m_idle.end() && !list->second.empty()) {
            taken = std::move(list->second.back().connection);
            m_spare.splice(m_spare.end(), list->second, std::prev(list->second.end()));
            --m_count;
        }
        taken.generation = m_generation;
        taken.owner = self;
    }
    if (!taken.handle) {
        taken.key = key;
        makeHandles(taken);
    }
    return taken;
}

void ConnectionPool::giveBack(Connection connection)
{
    if (m_keepsLastHeader) {
        connection.handle.reset();
        connection.isSet = false;
    }
    IdleList node = makeNode();
    node.front() = Idle{std::move(connection), Clock::now()};
    IdleList surplus; // closed after the lock was released
    const std::lock_guard<std::mutex> lock(libraryMutex());
    const Connection& given = node.front().connection;
    if (given.owner != m_owner) {
        m_parents.splice(m_parents.end(), node);
    } else if (m_ended || given.generation != m_generation) {
        surplus.splice(surplus.end(), node);
    } else {
        IdleList& list = m_idle[given.key];
        list.splice(list.end(), node);
        ++m_count;
        takeSurplus(list, surplus);
    }
}

/// A node for a connection; the one that it was taken out of, mostly.
ConnectionPool::IdleList ConnectionPool::makeNode()
{
    IdleList node;
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        if (!m_spare.empty()) {
            node.splice(node.end(), m_spare, m_spare.begin());
        }
    }
    if (node.empty()) {
        node.emplace_back();
    }
    return node;
}

void ConnectionPool::clear()
{
    std::map<std::string, IdleList> closed; // after the lock was released
    const pid_t self = getpid();
    const std::lock_guard<std::mutex> lock(libraryMutex());
    leaveToParent(self);
    ++m_generation;
    closed.swap(m_idle);
    m_count = 0;
}

void ConnectionPool::end()
{
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        m_ended = true;
    }
    clear();
}

void ConnectionPool::leaveToParent(pid_t self)
{
    if (m_owner == self) {
        return;
    }
    // Closing them would send a TLS close on connections that the parent still uses.
    for (auto& list : m_idle) {
        m_parents.splice(m_parents.end(), list.second);
    }
    m_idle.clear();
    m_count = 0;
    m_owner = self;
}

/// Those that are too many of the server that one was given back of, too many of all, or too old.
void ConnectionPool::takeSurplus(IdleList& given, IdleList& surplus)
{
    const auto takeOldest = [&](IdleList& list) {
        surplus.splice(surplus.end(), list, list.begin());
        --m_count;
    };
    const Clock::time_point now = given.back().since;
    if (given.size() > MOST_IDLE_OF_SERVER) {
        takeOldest(given);
    }
    const auto isOlder = [](const Lists::value_type& one, const Lists::value_type& other) {
        return !one.second.empty() &&
               (other.second.empty() || one.second.front().since < other.second.front().since);
    };
    while (m_count > m_most) {
        takeOldest(std::min_element(m_idle.begin(), m_idle.end(), isOlder)->second);
    }
    if (now - m_lookedAt < BETWEEN_LOOKS) {
        return;
    }
    m_lookedAt = now;
    for (auto list = m_idle.begin(); list != m_idle.end();) {
        while (!list->second.empty() && list->second.front().since < now - LONGEST_IDLE) {
            takeOldest(list->second);
        }
        list = list->second.empty() ? m_idle.erase(list) : std::next(list);
    }
}

} // namespace ovra::rest
