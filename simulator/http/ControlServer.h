#ifndef SIMULATOR_HTTP_CONTROLSERVER_H
#define SIMULATOR_HTTP_CONTROLSERVER_H

#include "http/ArrayServer.h"

#include <thread>

namespace arraysim {

/** What the control interface tells about the array, so that a test needs only the control port. */
struct ArrayFacts
{
    std::string url;
    std::string caFile;
    std::string pinnedKey;
    std::string user;
};

/** The test's own interface, apart from the array's: plain HTTP on the loopback address. */
class ControlServer
{
public:
    ControlServer(World& world, ArrayInterface& array, Sessions& sessions, Faults& faults, Journal& journal,
                  ArrayServer& server, ArrayFacts facts);
    ~ControlServer();

    /** @return the port. Throws std::runtime_error. */
    int start(int port);
    void stop();

private:
    void routeFacts();
    void routeFaults();
    void routeWatch();
    void routeObjects();
    void routeState();
    /** Not another's web page, whose browser knows this port or resolves a name to this address. */
    bool isOwnPage(const httplib::Request& request) const;

    World& m_world;
    ArrayInterface& m_array;
    Sessions& m_sessions;
    Faults& m_faults;
    Journal& m_journal;
    ArrayServer& m_arrayServer;
    ArrayFacts m_facts;
    httplib::Server m_server;
    int m_port = 0;
    std::thread m_thread;
};

} // namespace arraysim

#endif
