#ifndef SUPPORT_ARRAYSIM_H
#define SUPPORT_ARRAYSIM_H

#include <json/json.h>

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace tessel_test {

/** How an ArraySim is started. */
struct ArraySimOptions
{
    std::vector<std::string> arguments; ///< further options of tessel-arraysim, e.g. {"--settle", "2"}
    std::string user = "admin";
    std::string password = "Sim-password-1";
    std::string listen = "127.0.0.1";
};

/**
 * A simulated array of a test's own: a process with free ports and a temporary state directory, which both
 * go with the object (a simulator that fails at its end aborts the test). The process ends when the test's
 * process does, however that ends. Failures of the simulator itself are thrown as std::runtime_error with
 * its output.
 */
class ArraySim
{
public:
    explicit ArraySim(ArraySimOptions options = {});
    ~ArraySim();
    ArraySim(const ArraySim&) = delete;
    ArraySim& operator=(const ArraySim&) = delete;

    const std::string& ip() const { return m_options.listen; }
    unsigned port() const { return m_port; }
    std::string url() const { return m_facts["url"].asString(); }
    /** The certificate authority that clients must trust (PEM). */
    std::string caFile() const { return m_facts["caFile"].asString(); }
    /** The server's public key as clients pin it: "sha256//...". */
    std::string pinnedKey() const { return m_facts["pinnedKey"].asString(); }
    std::string deviceId() const { return m_facts["deviceId"].asString(); }
    const std::string& user() const { return m_options.user; }
    const std::string& password() const { return m_options.password; }
    const std::string& stateDir() const { return m_stateDir; }
    unsigned controlPort() const { return m_controlPort; }
    pid_t pid() const { return m_pid; }
    /** Everything the simulator wrote: its log of requests. */
    std::string log() const;

    /** One request to the control interface. @return its answer. Throws where it refuses. */
    Json::Value control(const std::string& method, const std::string& path,
                        const Json::Value& body = {}) const;

    /** Sets a fault, e.g. {"method": "GET", "path": "/lun/7", "action": "close"}. @return its number */
    unsigned addFault(const Json::Value& fault) const;
    unsigned addFault(const char* json) const;
    /** An error object with this code for the next count requests that match. */
    unsigned addErrorFault(const std::string& method, const std::string& path, int code,
                           unsigned count = 1) const;
    Json::Value faults() const;
    void clearFaults() const;

    /** {"connections": N, "handshakes": N, "sessions": N, "sessionsHighest": N, "requests": {"GET /lun/{id}":
     * N, ...}} */
    Json::Value counters() const;
    /** Requests counted for one method and resource, e.g. ("GET", "/lun/{id}"). */
    unsigned long requests(const std::string& method, const std::string& resource) const;
    void resetCounters() const;
    /**
     * The requests so far, oldest first: number, connection, method, path, body, contentType, status, code.
     */
    Json::Value journal() const;
    void clearJournal() const;

    /** Creates an object as a client would. @return its record */
    Json::Value create(const std::string& resource, const Json::Value& members) const;
    /** The ID of a new LUN in the first pool. */
    std::string createLun(const std::string& name, unsigned sectors = 2048) const;
    std::string createSnapshot(const std::string& lunId, const std::string& name) const;
    /** The record of an object. Throws where there is none. */
    Json::Value record(const std::string& resource, const std::string& id) const;
    void remove(const std::string& resource, const std::string& id) const;
    /** Creates count LUNs, in a LUN group where one is named. @return their IDs */
    std::vector<std::string> bulkLuns(unsigned count, const std::string& lunGroup = "",
                                      const std::string& pool = "0") const;

    /** New objects refuse this many reads by ID (1077949006; LUN groups first 1077949001). */
    void settle(unsigned reads, unsigned lunGroupReads = 0) const;
    void dropSessions() const;
    /** Lets seconds pass for the idle time of sessions. */
    void advanceSessions(unsigned seconds) const;
    /** Factory state: objects, sessions, faults, journal and counters. */
    void reset() const;

    /** Ends the simulator with SIGTERM. @return its exit status, or 128 + the signal that ended it */
    int stop();
    /** Ends it without any warning. */
    void kill();
    /** Starts it again after stop() or kill(), on the same port and state. */
    void start();
    bool running() const { return m_pid > 0; }

private:
    static constexpr std::chrono::seconds PATIENCE{
        60}; ///< until a simulator that does not answer is given up

    std::vector<std::string> commandLine() const;
    void awaitPorts();
    std::string output() const;
    int reap();

    ArraySimOptions m_options;
    std::string m_stateDir;
    unsigned m_port = 0;
    unsigned m_controlPort = 0;
    Json::Value m_facts;
    pid_t m_pid = -1;
    int m_lifeline = -1; ///< the other end of the simulator's standard input
};

} // namespace tessel_test

#endif
