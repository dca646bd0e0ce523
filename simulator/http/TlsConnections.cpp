#include "http/TlsConnections.h"

#include <sys/socket.h>

namespace arraysim {
namespace {

/** The HTTP library bounds the lines of a head, but not their number. */
constexpr std::size_t LARGEST_HEAD = 256UL * 1024;

} // namespace

void TlsConnections::watch(SSL_CTX* context)
{
    m_context = context;
    SSL_CTX_set_app_data(context, this);
    SSL_CTX_set_info_callback(context, onInfo);
    SSL_get_ex_new_index(0, this, nullptr, nullptr, onFree);
}

void TlsConnections::onInfo(const SSL* connection, int where, int)
{
    if ((where & SSL_CB_HANDSHAKE_START) == 0) {
        return;
    }
    auto* self = static_cast<TlsConnections*>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(connection)));
    const std::lock_guard<std::mutex> guard(self->m_mutex);
    if (self->m_open.count(connection) == 0) {
        self->m_open[connection] = {SSL_get_fd(connection), ++self->m_lastNumber, false, false, false, 0};
        BIO* bio = SSL_get_rbio(connection);
        BIO_set_callback_arg(bio, const_cast<char*>(reinterpret_cast<const char*>(connection)));
        BIO_set_callback_ex(bio, onRead);
        if (self->m_open.size() > self->m_limit) {
            ::shutdown(SSL_get_fd(connection), SHUT_RDWR);
        } else if (self->m_stopping) {
            ::shutdown(SSL_get_fd(connection), SHUT_RD);
        }
    }
}

long TlsConnections::onRead(BIO* bio, int operation, const char*, size_t, int, long, int result, size_t* read)
{
    if (operation != (BIO_CB_READ | BIO_CB_RETURN) || result <= 0 || read == nullptr) {
        return result;
    }
    const auto* connection = reinterpret_cast<const SSL*>(BIO_get_callback_arg(bio));
    auto* self = static_cast<TlsConnections*>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(connection)));
    const std::lock_guard<std::mutex> guard(self->m_mutex);
    const auto found = self->m_open.find(connection);
    if (found != self->m_open.end() && !found->second.hasHead) {
        found->second.head += *read;
        if (found->second.head > LARGEST_HEAD) {
            ::shutdown(found->second.descriptor, SHUT_RDWR);
        }
    }
    return result;
}

void TlsConnections::headEnds(const SSL* connection)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_open.find(connection);
    if (found != m_open.end()) {
        found->second.hasHead = true;
    }
}

// Runs before the descriptor is closed, so that a number in the map is never one that was used again.
void TlsConnections::onFree(void* connection, void*, CRYPTO_EX_DATA*, int, long, void* self)
{
    auto* connections = static_cast<TlsConnections*>(self);
    const std::lock_guard<std::mutex> guard(connections->m_mutex);
    connections->m_open.erase(static_cast<const SSL*>(connection));
}

unsigned long TlsConnections::requestBegins(const SSL* connection)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    Open& open = m_open.at(connection);
    open.busy = true;
    return open.number;
}

void TlsConnections::requestEnds(const SSL* connection)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_open.find(connection);
    if (found != m_open.end()) {
        found->second.busy = false;
        found->second.hasHead = false;
        found->second.head = 0;
        if (found->second.last) {
            ::shutdown(found->second.descriptor, SHUT_RDWR);
        } else if (m_stopping) {
            ::shutdown(found->second.descriptor, SHUT_RD);
        }
    }
}

void TlsConnections::cut(const SSL* connection)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_open.find(connection);
    if (found != m_open.end()) {
        ::shutdown(found->second.descriptor, SHUT_RDWR);
    }
}

void TlsConnections::reset(const SSL* connection)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_open.find(connection);
    if (found != m_open.end()) {
        const sockaddr none{AF_UNSPEC, {}};
        static_cast<void>(::connect(found->second.descriptor, &none, sizeof none));
    }
}

void TlsConnections::endWithAnswer(const SSL* connection)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_open.find(connection);
    if (found != m_open.end()) {
        found->second.last = true;
    }
}

bool TlsConnections::isEnding(const SSL* connection) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_open.find(connection);
    return found != m_open.end() && found->second.last;
}

void TlsConnections::stopReading()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_stopping = true;
    for (const auto& entry : m_open) {
        // The HTTP library sends no answer on a connection that it finds closed for reading.
        if (!entry.second.busy) {
            ::shutdown(entry.second.descriptor, SHUT_RD);
        }
    }
}

unsigned long TlsConnections::handshakes() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return static_cast<unsigned long>(SSL_CTX_sess_accept_good(m_context) - m_handshakesBefore);
}

void TlsConnections::clearCounters()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_handshakesBefore = SSL_CTX_sess_accept_good(m_context);
}

} // namespace arraysim
