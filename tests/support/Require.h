#ifndef SUPPORT_REQUIRE_H
#define SUPPORT_REQUIRE_H

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace tessel_test {

/** Throws when a call has failed that a test cannot do without. */
inline void require(bool ok, const std::string& what)
{
    if (!ok) {
        throw std::runtime_error("test support: " + what + " (" + std::strerror(errno) + ")");
    }
}

} // namespace tessel_test

#endif
