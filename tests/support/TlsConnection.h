#ifndef SUPPORT_TLSCONNECTION_H
#define SUPPORT_TLSCONNECTION_H

#include "ArraySim.h"

#include <openssl/ssl.h>

#include <poll.h>
#include <string>

namespace tessel_test {

/** A bare connection to a simulated array, whose certificate it does not look at: for what no HTTP client
 * does. */
class TlsConnection
{
public:
    explicit TlsConnection(const ArraySim& array)
        : m_context(SSL_CTX_new(TLS_client_method())), m_bio(BIO_new_ssl_connect(m_context))
    {
        std::string place = array.ip() + ":" + std::to_string(array.port()); // not const: the macro casts
        BIO_set_conn_hostname(m_bio, place.data());
        m_isOpen = BIO_do_connect(m_bio) == 1;
    }
    ~TlsConnection()
    {
        BIO_free_all(m_bio);
        SSL_CTX_free(m_context);
    }
    TlsConnection(const TlsConnection&) = delete;
    TlsConnection& operator=(const TlsConnection&) = delete;

    bool isOpen() const { return m_isOpen; }
    /**
     * Waits until a little more can be sent; false when the array has ended the connection. A write that
     * waits for room would hear of that by the next probe of a closed window alone, a minute later.
     */
    bool waitForRoom()
    {
        pollfd polled = {-1, POLLOUT | POLLRDHUP, 0};
        BIO_get_fd(m_bio, &polled.fd);
        return poll(&polled, 1, PATIENCE_MS) == 1 && polled.revents == POLLOUT;
    }
    bool send(const std::string& bytes)
    {
        return BIO_write(m_bio, bytes.data(), static_cast<int>(bytes.size())) > 0;
    }
    /** True when a byte came before the end. */
    bool receive()
    {
        char byte = 0;
        return BIO_read(m_bio, &byte, 1) > 0;
    }

private:
    static constexpr int PATIENCE_MS = 60000;

    SSL_CTX* m_context;
    BIO* m_bio;
    bool m_isOpen = false;
};

} // namespace tessel_test

#endif
