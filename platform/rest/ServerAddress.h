#ifndef OVRA_REST_SERVERADDRESS_H
#define OVRA_REST_SERVERADDRESS_H

#include <optional>
#include <string>

namespace ovra::rest {

/** Host and port of a server; always reached by https. */
struct ServerAddress
{
    std::string host; ///< name or address, an IPv6 address in brackets
    unsigned int port = 0;

    /** "https://host:port" */
    std::string origin() const;

    /** From "https://host[:port][/]"; nothing for another scheme, a path, a user name or a wrong port. */
    static std::optional<ServerAddress> fromUrl(const std::string& url);

    /** From an address or name (an IPv6 address with or without brackets) and a port. */
    static std::optional<ServerAddress> fromHostAndPort(const std::string& host, unsigned int port);
};

} // namespace ovra::rest

#endif
