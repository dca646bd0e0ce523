#ifndef SUPPORT_MISBEHAVINGSERVER_H
#define SUPPORT_MISBEHAVINGSERVER_H

#include "ReceivedRequest.h"
#include "ServerBehaviour.h"
#include "TestCertificates.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tessel_test {

/**
 * An HTTPS server on a free loopback port that does what a test tells it to, and counts what it sees.
 *
 * Each request is answered by the first of: the behaviour that was enqueued for it, the handler, the default
 * (a success without data). All members may be called from any thread.
 */
class MisbehavingServer
{
public:
    struct Options
    {
        Certificate certificate = Certificate::Good;
        std::string address = "127.0.0.1"; ///< or "::1"
        bool plainHttp = false;            ///< no TLS at all
        bool silentOnConnect = false;      ///< accepts, and never answers the TLS handshake
        int maximumTlsVersion = 0;         ///< e.g. TLS1_1_VERSION; 0: no limit
    };
    using Handler = std::function<Behaviour(const ReceivedRequest&)>;

    MisbehavingServer();
    explicit MisbehavingServer(const Options& options);
    ~MisbehavingServer();
    MisbehavingServer(const MisbehavingServer&) = delete;
    MisbehavingServer& operator=(const MisbehavingServer&) = delete;

    unsigned short port() const;
    /** "https://" + address + ":" + port, an IPv6 address in brackets. */
    std::string url() const;

    void enqueue(const Behaviour& behaviour);
    /** Called in the server's thread. */
    void setHandler(Handler handler);
    void setDefault(const Behaviour& behaviour);

    unsigned accepts() const;       ///< TCP connections accepted
    unsigned handshakes() const;    ///< TLS handshakes completed
    unsigned requestCount() const;  ///< complete requests read
    unsigned closeNotifies() const; ///< connections that the client ended with a TLS close
    unsigned endedByClient() const; ///< connections that the client ended in any way
    std::vector<ReceivedRequest> requests() const;

    /** Closes every open connection; they are closed when it returns. */
    void closeConnections();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tessel_test

#endif
