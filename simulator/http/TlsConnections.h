#ifndef SIMULATOR_HTTP_TLSCONNECTIONS_H
#define SIMULATOR_HTTP_TLSCONNECTIONS_H

#include <openssl/ssl.h>

#include <atomic>
#include <map>
#include <mutex>

namespace arraysim {

/**
 * The open TLS connections of a server, found through OpenSSL's own hooks: their numbers, and the
 * means to end them.
 */
class TlsConnections
{
public:
    /** Above limit connections at a time those that come are ended at once. */
    explicit TlsConnections(std::size_t limit) : m_limit(limit) {}
    /** Puts the hooks into the server's context. */
    void watch(SSL_CTX* context);

    /** The head of a request was read: what follows is a body, which has a limit of its own. */
    void headEnds(const SSL* connection);
    /** A request came in. @return the connection's number */
    unsigned long requestBegins(const SSL* connection);
    /** Its answer was sent. */
    void requestEnds(const SSL* connection);
    /** Cuts the connection at once, so that the client gets no answer. */
    void cut(const SSL* connection);
    /** The same with a reset, as when a host on the way goes down. */
    void reset(const SSL* connection);
    /** Lets the connection end with the answer being sent; whatever else came over it is no request. */
    void endWithAnswer(const SSL* connection);
    bool isEnding(const SSL* connection) const;
    /** Ends every connection that waits for a request, the others once they have sent their answer. */
    void stopReading();
    unsigned long handshakes() const;
    void clearCounters();

private:
    struct Open
    {
        int descriptor;
        unsigned long number;
        bool busy;
        bool last;        ///< ends with the answer
        bool hasHead;     ///< the head of a request was read, and it is not answered yet
        std::size_t head; ///< bytes that came in since the last answer
    };

    static void onInfo(const SSL* connection, int where, int result);
    static long onRead(BIO* bio, int operation, const char*, size_t, int, long, int result, size_t* read);
    static void onFree(void* connection, void*, CRYPTO_EX_DATA*, int, long, void* self);

    const std::size_t m_limit;
    SSL_CTX* m_context = nullptr;
    long m_handshakesBefore = 0;
    mutable std::mutex m_mutex;
    std::map<const SSL*, Open> m_open;
    unsigned long m_lastNumber = 0;
    bool m_stopping = false;
};

} // namespace arraysim

#endif
