#include "network/Probe.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <memory>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace tesselctl {
namespace {

class Socket
{
public:
    explicit Socket(int family) : m_descriptor(socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
    }
    ~Socket()
    {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    operator int() const { return m_descriptor; }

private:
    int m_descriptor;
};

/** 0 or an errno. */
int connectWithin(int descriptor, const sockaddr* address, socklen_t size, long seconds)
{
    if (connect(descriptor, address, size) == 0) {
        return 0;
    }
    if (errno != EINPROGRESS) {
        return errno;
    }
    pollfd wait{descriptor, POLLOUT, 0};
    if (poll(&wait, 1, static_cast<int>(seconds * 1000)) <= 0) {
        return ETIMEDOUT;
    }
    int error = 0;
    socklen_t length = sizeof(error);
    getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &length);
    return error;
}

int connectTo(int descriptor, const ArrayAddress& address, bool isV6, long seconds)
{
    sockaddr_in6 six{};
    sockaddr_in four{};
    six.sin6_family = AF_INET6;
    six.sin6_port = htons(static_cast<uint16_t>(address.port));
    four.sin_family = AF_INET;
    four.sin_port = six.sin6_port;
    inet_pton(AF_INET6, address.ip.c_str(), &six.sin6_addr);
    inet_pton(AF_INET, address.ip.c_str(), &four.sin_addr);
    const void* any = isV6 ? static_cast<const void*>(&six) : &four;
    return connectWithin(descriptor, static_cast<const sockaddr*>(any), isV6 ? sizeof(six) : sizeof(four),
                         seconds);
}

/** From here on every read and write may take so long and no longer. */
void makeBlocking(int descriptor, long seconds)
{
    timeval limit{seconds, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
    BIO_socket_nbio(descriptor, 0);
}

std::string tlsError()
{
    const unsigned long code = ERR_get_error();
    const char* text = ERR_reason_error_string(code);
    return text == nullptr ? "the connection was closed or nothing answered" : text;
}

void shakeHands(Probe& result, SSL_CTX& context, int descriptor, const ArrayAddress& address)
{
    const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(&context), SSL_free);
    X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(tls.get()), address.ip.c_str());
    SSL_set_fd(tls.get(), descriptor);
    ERR_clear_error();
    const bool done = SSL_connect(tls.get()) == 1;
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(SSL_get1_peer_certificate(tls.get()),
                                                                  X509_free);
    if (!done || !certificate) {
        result.reason = tlsError();
        return;
    }
    result.spoke = true;
    result.certificate = describe(*certificate);
    const long verdict = SSL_get_verify_result(tls.get());
    result.verified = verdict == X509_V_OK;
    result.trustProblem = result.verified ? "" : X509_verify_cert_error_string(verdict);
    SSL_shutdown(tls.get());
}

} // namespace

Probe probe(const ArrayAddress& address, const std::string& caFile, long timeoutSeconds)
{
    Probe result;
    const bool isV6 = address.ip.find(':') != std::string::npos;
    const Socket descriptor(isV6 ? AF_INET6 : AF_INET);
    const int error = connectTo(descriptor, address, isV6, timeoutSeconds);
    if (error != 0) {
        result.reason = std::strerror(error);
        return result;
    }
    result.connected = true;
    makeBlocking(descriptor, timeoutSeconds);
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()),
                                                                    SSL_CTX_free);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    std::string caProblem;
    if (caFile.empty()) {
        SSL_CTX_set_default_verify_paths(context.get());
    } else if (SSL_CTX_load_verify_locations(context.get(), caFile.c_str(), nullptr) != 1) {
        caProblem = "the CA file " + caFile +
                    (access(caFile.c_str(), R_OK) == 0 ? std::string(" holds no certificates")
                                                       : std::string(": ") + std::strerror(errno));
    }
    shakeHands(result, *context, descriptor, address);
    if (!caProblem.empty()) { // then nothing was trusted
        result.trustProblem = caProblem;
    }
    return result;
}

} // namespace tesselctl
