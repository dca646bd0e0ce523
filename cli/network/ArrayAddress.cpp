#include "network/ArrayAddress.h"

#include "kernel/Failure.h"
#include "text/Numbers.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <utility>

namespace tesselctl {
namespace {

bool isAddress(int family, const std::string& text)
{
    std::array<unsigned char, sizeof(in6_addr)> binary{};
    return inet_pton(family, text.c_str(), binary.data()) == 1;
}

/** Splits "host:port" where exactly one colon or brackets say where the port begins. */
std::pair<std::string, std::string> split(const std::string& text)
{
    if (!text.empty() && text[0] == '[') {
        const size_t end = text.find(']');
        if (end == std::string::npos || (end + 1 < text.size() && text[end + 1] != ':')) {
            return {text, ""};
        }
        return {text.substr(1, end - 1), end + 1 < text.size() ? text.substr(end + 1) : ""};
    }
    const bool oneColon = std::count(text.begin(), text.end(), ':') == 1;
    const size_t colon = oneColon ? text.find(':') : text.size();
    return {text.substr(0, colon), text.substr(colon)};
}

} // namespace

std::string ArrayAddress::text() const
{
    const bool isV6 = ip.find(':') != std::string::npos;
    return (isV6 ? "[" + ip + "]" : ip) + ":" + std::to_string(port);
}

ArrayAddress parseArrayAddress(const std::string& what, const std::string& text)
{
    const auto [host, port] = split(text);
    if (!isAddress(AF_INET, host) && !isAddress(AF_INET6, host)) {
        throw UsageError(what +
                         " takes an IP address with or without a port, such as 192.0.2.10:8088 or "
                         "[2001:db8::1]:8088, not '" +
                         text + "'; names are not looked up");
    }
    ArrayAddress address;
    address.ip = host;
    if (!port.empty()) {
        address.port =
            static_cast<unsigned int>(parseNumber("the port of " + what, port.substr(1), 1, 65535));
    }
    return address;
}

} // namespace tesselctl
