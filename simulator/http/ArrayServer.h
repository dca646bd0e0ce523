#ifndef SIMULATOR_HTTP_ARRAYSERVER_H
#define SIMULATOR_HTTP_ARRAYSERVER_H

#include "http/Bodies.h"
#include "http/ConnectionThreads.h"
#include "http/FaultedAnswer.h"
#include "http/TlsConnections.h"
#include "watch/Faults.h"
#include "watch/Journal.h"
#include "wire/ArrayInterface.h"

#include <thread>

namespace arraysim {

/** What it serves with. */
struct ServerSettings
{
    std::string certificate; ///< PEM, with its chain
    std::string key;         ///< PEM
    std::size_t connectionLimit = 1000;
    unsigned answerMs = 0; ///< that every answer takes
};

/** The array's interface on HTTPS, with the faults that tests set and the journal of what came in. */
class ArrayServer
{
public:
    ArrayServer(ArrayInterface& array, Sessions& sessions, Faults& faults, Journal& journal,
                const ServerSettings& settings);
    ~ArrayServer();

    /** Binds and begins to serve. @return the port. Throws std::runtime_error. */
    int start(const std::string& address, int port);
    /** Ends after the requests that are being served. */
    void stop();

    Json::Value counters();
    void clearCounters();

private:
    class Server;

    void serve(const httplib::Request& request, httplib::Response& response, const std::string& body);
    void serveWithBody(const httplib::Request& request, httplib::Response& response,
                       const httplib::ContentReader& reader);
    Answer answerTo(const httplib::Request& request, const std::string& body, const Fault* fault);
    void journalize(JournalEntry entry, const httplib::Request& request, const std::string& body);

    ArrayInterface& m_array;
    Sessions& m_sessions;
    Faults& m_faults;
    Journal& m_journal;
    const unsigned m_answerMs;
    TlsConnections m_connections;
    Pauses m_pauses;
    std::atomic<unsigned long> m_accepted{0};
    std::unique_ptr<Server> m_server;
    std::thread m_thread;
};

} // namespace arraysim

#endif
