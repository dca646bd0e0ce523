#include "ServerConnection.h"

#include <openssl/err.h>

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tessel_test {

ServerConnection::ServerConnection(int socket, unsigned number, SSL_CTX* context, bool silent,
                                   ConnectionObserver& observer)
    : m_socket(socket), m_number(number), m_ssl(context ? SSL_new(context) : nullptr), m_observer(observer),
      m_state(silent    ? State::SILENT
              : context ? State::HANDSHAKE
                        : State::READING)
{
    constexpr int ON = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &ON, sizeof(ON));
    if (m_ssl) {
        SSL_set_fd(m_ssl, m_socket);
        SSL_set_mode(m_ssl, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    }
}

ServerConnection::~ServerConnection()
{
    SSL_free(m_ssl);
    close(m_socket);
}

short ServerConnection::wanted() const
{
    if (m_state == State::SILENT) {
        return 0;
    }
    const bool paused = m_state == State::WRITING && due();
    return paused ? 0 : m_blockedOnWrite ? POLLOUT : POLLIN;
}

std::optional<ServerConnection::Clock::time_point> ServerConnection::due() const
{
    if (m_state == State::WRITING && (m_behaviour.perByte + m_behaviour.before).count() > 0) {
        return m_nextByte;
    }
    return std::nullopt;
}

bool ServerConnection::step()
{
    Progress progress = Progress::MOVED;
    while (progress == Progress::MOVED) {
        m_blockedOnWrite = false;
        ERR_clear_error();
        switch (m_state) {
        case State::SILENT:
            progress = Progress::BLOCKED;
            break;
        case State::HANDSHAKE:
            progress = shakeHands();
            break;
        case State::READING:
            progress = read();
            break;
        case State::WRITING:
            progress = write();
            break;
        }
    }
    return progress == Progress::BLOCKED;
}

void ServerConnection::shutDown()
{
    if (m_ssl && m_state != State::HANDSHAKE && m_state != State::SILENT) {
        SSL_shutdown(m_ssl);
    }
    shutdown(m_socket, SHUT_RDWR);
}

ServerConnection::Progress ServerConnection::shakeHands()
{
    const int result = SSL_accept(m_ssl);
    if (result != 1) {
        return blockedOrOver(result);
    }
    m_observer.handshakeDone();
    m_state = State::READING;
    return Progress::MOVED;
}

ServerConnection::Progress ServerConnection::read()
{
    std::array<char, 16384> buffer;
    const int length = receive(buffer.data(), static_cast<int>(buffer.size()));
    if (length <= 0) {
        return blockedOrOver(length);
    }
    m_input.append(buffer.data(), static_cast<size_t>(length));
    const bool tlsWithoutTls = !m_ssl && m_input.front() == '\x16';
    if (tlsWithoutTls) {
        behave(Behaviour::raw("HTTP/1.1 400 Bad Request\r\n\r\n", Behaviour::Afterwards::CLOSE));
    } else if (const std::optional<ReceivedRequest> request = takeRequest(m_input, m_number)) {
        behave(m_observer.requestReceived(*request));
    }
    return Progress::MOVED;
}

void ServerConnection::behave(const Behaviour& behaviour)
{
    m_behaviour = behaviour;
    m_pending = m_behaviour.bytes;
    m_sent = 0;
    // Two records, but one arrival: otherwise the client may be at its next request before the second is
    // there.
    cork(!m_behaviour.separately.empty());
    m_nextByte = Clock::now() + m_behaviour.before;
    m_state = State::WRITING;
}

ServerConnection::Progress ServerConnection::write()
{
    if (m_pending.empty()) {
        m_pending.swap(m_behaviour.separately);
    }
    if (m_pending.empty()) {
        m_pending = m_behaviour.endlessly;
    }
    if (m_pending.empty()) {
        return finishWriting();
    }
    const bool slow = m_behaviour.perByte.count() > 0;
    if (due() && Clock::now() < m_nextByte) {
        return Progress::BLOCKED;
    }
    const int written = transmit(m_pending.data() + m_sent, slow ? 1 : m_pending.size() - m_sent);
    if (written <= 0) {
        return blockedOrOver(written);
    }
    m_sent += static_cast<size_t>(written);
    if (m_sent == m_pending.size()) {
        m_pending.clear();
        m_sent = 0;
    }
    m_nextByte = Clock::now() + m_behaviour.perByte;
    return Progress::MOVED;
}

ServerConnection::Progress ServerConnection::finishWriting()
{
    m_state = State::READING;
    cork(false);
    switch (m_behaviour.afterwards) {
    case Behaviour::Afterwards::KEEP_OPEN:
        return Progress::MOVED;
    case Behaviour::Afterwards::CLOSE:
        shutDown();
        break;
    case Behaviour::Afterwards::RESET: {
        const linger hard{1, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
        break;
    }
    }
    return Progress::OVER;
}

void ServerConnection::cork(bool on)
{
    const int value = on;
    setsockopt(m_socket, IPPROTO_TCP, TCP_CORK, &value, sizeof(value));
}

ServerConnection::Progress ServerConnection::blockedOrOver(int result)
{
    const int error = m_ssl ? SSL_get_error(m_ssl, result) : SSL_ERROR_NONE;
    if (m_ssl ? error == SSL_ERROR_WANT_READ : result < 0 && errno == EAGAIN) {
        m_blockedOnWrite = !m_ssl && m_state == State::WRITING;
    } else if (error == SSL_ERROR_WANT_WRITE) {
        m_blockedOnWrite = true;
    } else {
        m_observer.closedByClient(error == SSL_ERROR_ZERO_RETURN);
        return Progress::OVER;
    }
    return Progress::BLOCKED;
}

int ServerConnection::receive(char* buffer, int size)
{
    if (m_ssl) {
        return SSL_read(m_ssl, buffer, size);
    }
    return static_cast<int>(recv(m_socket, buffer, static_cast<size_t>(size), 0));
}

int ServerConnection::transmit(const char* data, size_t size)
{
    if (m_ssl) {
        return SSL_write(m_ssl, data, static_cast<int>(size));
    }
    return static_cast<int>(send(m_socket, data, size, MSG_NOSIGNAL));
}

} // namespace tessel_test
