#ifndef SUPPORT_SERVERCONNECTION_H
#define SUPPORT_SERVERCONNECTION_H

#include "MisbehavingServer.h"

#include <openssl/ssl.h>

#include <optional>

namespace tessel_test {

/** What a connection reports to its server. */
class ConnectionObserver
{
public:
    virtual void handshakeDone() = 0;
    virtual Behaviour requestReceived(const ReceivedRequest& request) = 0;
    virtual void closedByClient(bool closeNotify) = 0;

protected:
    ~ConnectionObserver() = default;
};

/** One accepted connection: a state machine over a socket that never blocks. */
class ServerConnection
{
public:
    using Clock = std::chrono::steady_clock;

    /** Takes the socket; context is null for a connection without TLS. */
    ServerConnection(int socket, unsigned number, SSL_CTX* context, bool silent,
                     ConnectionObserver& observer);
    ~ServerConnection();
    ServerConnection(const ServerConnection&) = delete;
    ServerConnection& operator=(const ServerConnection&) = delete;

    int socket() const { return m_socket; }
    /** Events to poll for. */
    short wanted() const;
    /** When step() is due even without an event. */
    std::optional<Clock::time_point> due() const;
    /** Goes as far as it can without blocking; false when the connection is over. */
    bool step();
    /** Orderly close from this side. */
    void shutDown();

private:
    enum class State
    {
        SILENT,
        HANDSHAKE,
        READING,
        WRITING
    };
    enum class Progress
    {
        MOVED,
        BLOCKED,
        OVER
    };

    Progress shakeHands();
    Progress read();
    void behave(const Behaviour& behaviour);
    Progress write();
    Progress finishWriting();
    void cork(bool on);
    Progress blockedOrOver(int result);
    int receive(char* buffer, int size);
    int transmit(const char* data, size_t size);

    int m_socket;
    unsigned m_number;
    SSL* m_ssl;
    ConnectionObserver& m_observer;
    State m_state;
    bool m_blockedOnWrite = false;
    std::string m_input;
    Behaviour m_behaviour;
    std::string m_pending; ///< bytes of the behaviour that are being sent
    size_t m_sent = 0;     ///< how many of them are
    Clock::time_point m_nextByte;
};

} // namespace tessel_test

#endif
