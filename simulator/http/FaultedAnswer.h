#ifndef SIMULATOR_HTTP_FAULTEDANSWER_H
#define SIMULATOR_HTTP_FAULTEDANSWER_H

#include "http/Pauses.h"
#include "http/TlsConnections.h"
#include "watch/Faults.h"
#include "wire/Answer.h"

#include <httplib.h>

namespace arraysim {

/** Puts an answer into the response as it is. */
void sendAnswer(httplib::Response& response, const Answer& answer);

/** What a fault makes of an answer on its way to the client. */
class FaultedAnswer
{
public:
    FaultedAnswer(const Fault& fault, TlsConnections& connections, Pauses& pauses)
        : m_fault(fault), m_connections(connections), m_pauses(pauses)
    {
    }

    void send(const SSL* connection, httplib::Response& response, const Answer& answer);

private:
    void truncate(httplib::Response& response, const std::string& body);
    void dribble(httplib::Response& response, const std::string& body);
    void neverEnd(httplib::Response& response);

    const Fault& m_fault;
    TlsConnections& m_connections;
    Pauses& m_pauses;
};

} // namespace arraysim

#endif
