#ifndef OVRA_REST_CONNECTIONPOOL_H
#define OVRA_REST_CONNECTIONPOOL_H

#include <curl/curl.h>

#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <sys/types.h>

namespace ovra::rest {

struct CurlCleanup
{
    void operator()(CURL* handle) const;
};
using CurlHandle = std::unique_ptr<CURL, CurlCleanup>;

struct MultiCleanup
{
    void operator()(CURLM* multi) const;
};
using MultiHandle = std::unique_ptr<CURLM, MultiCleanup>;

/** A handle with the connection that it keeps alive. */
struct Connection
{
    std::string key; ///< server and trust settings; handles of different keys are never exchanged
    MultiHandle
        multi; ///< drives the handle, so that a wait for the network can be ended; keeps the connection
    CurlHandle handle;
    curl_socket_t socket = CURL_SOCKET_BAD; ///< of the idle connection, if there is one
    unsigned long generation = 0;           ///< of the pool when it was taken
    pid_t owner = 0;                        ///< process that made the connection
    bool isSet = false;                     ///< the handle has the options that follow from the key
};

/**
 * False when anything happened on a connection since its last answer: then the server closed it, or is about
 * to. (libcurl takes a TLS close for data, and would send the next request into it.)
 */
bool isQuiet(const Connection& connection);

/** Idle connections of the process, of each server and trust the one used last first. */
class ConnectionPool
{
public:
    ConnectionPool();

    static ConnectionPool& instance();

    /** An idle connection of that key, or a handle without a connection. */
    Connection take(const std::string& key);

    /** Gives a connection back for the next request. */
    void giveBack(Connection connection);

    /** Whether nothing raises SIGPIPE that is sent on a connection which is there. */
    bool sendsWithoutSignal() const { return m_sendsWithoutSignal; }

    /** Closes the idle connections; those in use are closed when they are given back. */
    void clear();

    /** The same, and none is kept from now on: what is sent still belongs to the end of the process. */
    void end();

private:
    using Clock = std::chrono::steady_clock;
    struct Idle
    {
        Connection connection;
        Clock::time_point since;
    };
    using IdleList = std::list<Idle>;
    using Lists = std::map<std::string, IdleList>;

    explicit ConnectionPool(unsigned curlVersion);

    IdleList makeNode();
    void leaveToParent(pid_t self);
    void takeSurplus(IdleList& given, IdleList& surplus);

    const bool m_keepsLastHeader; ///< of libcurl's handles: each serves one request
    const bool m_sendsWithoutSignal;
    Lists m_idle;                   ///< by key; oldest first
    IdleList m_spare;               ///< nodes without a connection
    size_t m_count = 0;             ///< of all idle ones
    const size_t m_most;            ///< of all
    Clock::time_point m_lookedAt{}; ///< for those that have grown too old
    IdleList m_parents;
    unsigned long m_generation = 0;
    pid_t m_owner = 0;
    bool m_ended = false;
};

} // namespace ovra::rest

#endif
