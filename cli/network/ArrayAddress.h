#ifndef NETWORK_ARRAYADDRESS_H
#define NETWORK_ARRAYADDRESS_H

#include <string>

namespace tesselctl {

/** Where the management interface of an array is. */
struct ArrayAddress
{
    std::string ip; ///< without brackets
    unsigned int port = 8088;

    /** "192.0.2.1:8088", "[2001:db8::1]:8088" */
    std::string text() const;
};

/** From IP, IP:PORT, [IPv6]:PORT or a bare IPv6 address; throws UsageError that says what is wrong. */
ArrayAddress parseArrayAddress(const std::string& what, const std::string& text);

} // namespace tesselctl

#endif
