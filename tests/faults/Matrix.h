#ifndef FAULTS_MATRIX_H
#define FAULTS_MATRIX_H

#include "faults/Faults.h"
#include "unit/handlers/Exchange.h"

#include <deque>
#include <mutex>

/** What was seen of one call. */
struct Seen
{
    Outcome outcome;
    Lines journal;                    ///< without the requests, and the REST library's own line
    bool isFailureKept = false;       ///< for lastFailure()
    unsigned warnings = 0;            ///< of the REST library
    std::vector<std::string> arrived; ///< the requests, "GET /lun/7"
    double seconds = 0;
};

/** The fields of the record that an operation reads, each answered in every way. */
std::vector<Fault> fieldFaults(const Exchange& exchange);

/** All operations that are one request, or begin with one that can fail. */
std::vector<Exchange> allExchanges();

/** Those that an operation may meet: the common ones, and those of its fields. */
std::vector<Fault> faultsOf(const Exchange& exchange);

/** An array that fails at the request of an operation, and a device manager that is logged in to it. */
class Matrix
{
public:
    Matrix();

    /** Calls it well. */
    Seen call(const Exchange& exchange);
    /** Calls it with the fault at its request, or from that on. */
    Seen call(const Exchange& exchange, const Fault& fault, bool isLasting);

    /** The array's end of them. */
    void closeConnections() { m_server.closeConnections(); }

private:
    Seen run(const Exchange& exchange);
    void connectTo(unsigned short port);

    std::mutex m_mutex;
    std::deque<tessel_test::Behaviour> m_script;
    tessel_test::Behaviour m_afterwards; ///< once the script is used up
    std::vector<std::string> m_arrived;
    tessel_test::MisbehavingServer m_server;
    CDeviceManagerImpl m_manager;
};

#endif
