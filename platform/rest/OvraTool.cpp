#include <ovra/rest/OvraTool.h>

#include <arpa/inet.h>

bool OvraTool::CheckIPValid(const std::string& ip)
{
    // inet_pton stops at a NUL and would take what stands before it for the whole.
    if (ip.find('\0') != std::string::npos) {
        return false;
    }
    in6_addr address = {}; // room for either family
    return inet_pton(AF_INET, ip.c_str(), &address) == 1 || inet_pton(AF_INET6, ip.c_str(), &address) == 1;
}
