#include "ServerNames.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <unistd.h>

#include <climits>
#include <stdexcept>

namespace arraysim {
namespace {

/** The addresses of this host's interfaces; those that hold on one link alone need more than an address. */
std::set<std::string> hostAddresses()
{
    std::set<std::string> found;
    ifaddrs* all = nullptr;
    if (::getifaddrs(&all) != 0) {
        throw std::runtime_error("cannot list this host's addresses");
    }
    for (const ifaddrs* entry = all; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr) {
            continue;
        }
        char text[INET6_ADDRSTRLEN] = "";
        if (entry->ifa_addr->sa_family == AF_INET) {
            const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
            inet_ntop(AF_INET, &address->sin_addr, text, sizeof text);
        } else if (entry->ifa_addr->sa_family == AF_INET6) {
            const auto* address = reinterpret_cast<const sockaddr_in6*>(entry->ifa_addr);
            if (!IN6_IS_ADDR_LINKLOCAL(&address->sin6_addr)) {
                inet_ntop(AF_INET6, &address->sin6_addr, text, sizeof text);
            }
        }
        found.insert(text);
    }
    ::freeifaddrs(all);
    found.erase("");
    return found;
}

} // namespace

bool isIpAddress(const std::string& text)
{
    unsigned char binary[16];
    return inet_pton(AF_INET, text.c_str(), binary) == 1 || inet_pton(AF_INET6, text.c_str(), binary) == 1;
}

std::set<std::string> serverNames(const std::string& address)
{
    std::set<std::string> names{"127.0.0.1", "::1", "localhost"};
    if (address != "0.0.0.0" && address != "::") {
        names.insert(address);
        return names;
    }
    names.merge(hostAddresses());
    char name[HOST_NAME_MAX + 1] = "";
    if (::gethostname(name, sizeof name - 1) == 0 && *name != '\0') {
        names.insert(name);
    }
    return names;
}

} // namespace arraysim
