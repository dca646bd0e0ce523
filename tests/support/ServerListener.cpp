#include "ServerListener.h"

#include "Require.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace tessel_test {

int listenOn(const std::string& address)
{
    sockaddr_storage storage{};
    socklen_t size = 0;
    if (address.find(':') == std::string::npos) {
        auto* v4 = reinterpret_cast<sockaddr_in*>(&storage);
        v4->sin_family = AF_INET;
        require(inet_pton(AF_INET, address.c_str(), &v4->sin_addr) == 1, "address");
        size = sizeof(*v4);
    } else {
        auto* v6 = reinterpret_cast<sockaddr_in6*>(&storage);
        v6->sin6_family = AF_INET6;
        require(inet_pton(AF_INET6, address.c_str(), &v6->sin6_addr) == 1, "address");
        size = sizeof(*v6);
    }
    const int listener = ::socket(storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    require(listener >= 0 && bind(listener, reinterpret_cast<sockaddr*>(&storage), size) == 0 &&
                listen(listener, 64) == 0,
            "listen");
    return listener;
}

unsigned short portOf(int listener)
{
    sockaddr_storage storage{};
    socklen_t size = sizeof(storage);
    getsockname(listener, reinterpret_cast<sockaddr*>(&storage), &size);
    // The port is at the same place for both families.
    return ntohs(reinterpret_cast<sockaddr_in*>(&storage)->sin_port);
}

SSL_CTX* makeContext(const MisbehavingServer::Options& options)
{
    if (options.plainHttp) {
        return nullptr;
    }
    const TestCertificates& certificates = TestCertificates::instance();
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    const bool loaded =
        SSL_CTX_use_certificate_chain_file(context,
                                           certificates.certificateFile(options.certificate).c_str()) == 1 &&
        SSL_CTX_use_PrivateKey_file(context, certificates.keyFile(options.certificate).c_str(),
                                    SSL_FILETYPE_PEM) == 1;
    require(loaded, "certificate");
    if (options.maximumTlsVersion != 0) {
        // The default security level would refuse old versions before the client can.
        SSL_CTX_set_cipher_list(context, "DEFAULT@SECLEVEL=0");
        SSL_CTX_set_min_proto_version(context, 0);
        SSL_CTX_set_max_proto_version(context, options.maximumTlsVersion);
    }
    return context;
}

} // namespace tessel_test
