#ifndef SIMULATOR_HTTP_ARRAYSERVER_H
#define SIMULATOR_HTTP_ARRAYSERVER_H

#include "http/ConnectionThreads.h"
#include "http/TlsConnections.h"
#include "watch/Faults.h"
#include "watch/Journal.h"
#include "wire/ArrayInterface.h"

namespace arraysim {

/** The array's interface on HTTPS, with the faults that tests set and the journal of what came in. */
class ArrayServer
{
public:
    ArrayServer(ArrayInterface& array, Sessions& sessions, Faults& faults, Journal& journal,
                const std::string& certificate, const std::string& key);
    ~ArrayServer();

    /** Binds and begins to serve. @return the port. Throws std::runtime_error. */
    int start(const std::string& address, int port);
    /** Ends after the requests that are being served. */
    void stop();

    Json::Value counters();
    void clearCounters();

private:
    class Server;

    void serve(const httplib::Request& request, httplib::Response& response);
    Answer answerTo(const httplib::Request& request, const Fault* fault);
    void send(const httplib::Request& request, httplib::Response& response, const Answer& answer,
              const Fault* fault);
    void pause(unsigned milliseconds);

    ArrayInterface& m_array;
    Sessions& m_sessions;
    Faults& m_faults;
    Journal& m_journal;
    TlsConnections m_connections;
    std::atomic<unsigned long> m_accepted{0};
    std::unique_ptr<Server> m_server;
    std::thread m_thread;
    std::mutex m_pauseMutex;
    std::condition_variable m_pauseEnds;
    bool m_stopping = false;
};

} // namespace arraysim

#endif
