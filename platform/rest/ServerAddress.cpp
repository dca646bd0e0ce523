#include "ServerAddress.h"

#include <ovra/rest/OvraTool.h>

#include <charconv>
#include <string_view>
#include <strings.h>
#include <system_error>

namespace ovra::rest {

namespace {

constexpr unsigned int HTTPS_PORT = 443;
constexpr unsigned int LARGEST_PORT = 65535;

bool isIpv6(const std::string& host)
{
    return host.find(':') != std::string::npos && OvraTool::CheckIPValid(host);
}

bool isNameOrIpv4(const std::string& host)
{
    static constexpr const char* ALLOWED =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";
    return !host.empty() && host.find_first_not_of(ALLOWED) == std::string::npos;
}

std::optional<unsigned int> parsePort(const std::string& text)
{
    unsigned int port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return port;
}

/// "host:port"; the last colon is the port's, also behind an IPv6 address without brackets.
std::optional<ServerAddress> withPort(const std::string& authority)
{
    const size_t colon = authority.rfind(':');
    if (colon == std::string::npos) {
        return std::nullopt;
    }
    const std::optional<unsigned int> port = parsePort(authority.substr(colon + 1));
    return port ? ServerAddress::fromHostAndPort(authority.substr(0, colon), *port) : std::nullopt;
}

} // namespace

std::string ServerAddress::origin() const
{
    return "https://" + host + ":" + std::to_string(port);
}

std::optional<ServerAddress> ServerAddress::fromUrl(const std::string& url)
{
    constexpr std::string_view SCHEME = "https://";
    if (strncasecmp(url.c_str(), SCHEME.data(), SCHEME.size()) != 0) {
        return std::nullopt;
    }
    std::string authority = url.substr(SCHEME.size());
    if (!authority.empty() && authority.back() == '/') {
        authority.pop_back();
    }
    if (std::optional<ServerAddress> address = withPort(authority)) {
        return address;
    }
    return fromHostAndPort(authority, HTTPS_PORT);
}

std::optional<ServerAddress> ServerAddress::fromHostAndPort(const std::string& host, unsigned int port)
{
    if (port == 0 || port > LARGEST_PORT) {
        return std::nullopt;
    }
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    const std::string bare = bracketed ? host.substr(1, host.size() - 2) : host;
    if (isIpv6(bare)) {
        return ServerAddress{"[" + bare + "]", port};
    }
    if (!bracketed && isNameOrIpv4(bare)) {
        return ServerAddress{bare, port};
    }
    return std::nullopt;
}

} // namespace ovra::rest
