#include "job/AccessNames.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>

namespace ovra::tessel {
namespace {

constexpr size_t LONGEST_ID = 16; ///< that stands in a name as it is

/** 16 hexadecimal digits of a text (FNV-1a): not the standard library's hash, which may differ between
 * builds. */
std::string digest(const std::string& text)
{
    uint64_t hash = 14695981039346656037U;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
    char digits[17] = {};
    std::snprintf(digits, sizeof(digits), "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

bool isPlain(const std::string& id)
{
    return id.size() < LONGEST_ID &&
           std::all_of(id.begin(), id.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

} // namespace

AccessNames AccessNames::ofHost(const std::string& hostID)
{
    return AccessNames("tessel_host_" + (isPlain(hostID) ? hostID : digest(hostID)));
}

AccessNames AccessNames::ofInitiator(const std::string& initiatorID)
{
    return AccessNames("tessel_" + digest(initiatorID));
}

std::string AccessNames::at(unsigned index) const
{
    return index == 0 ? m_plain : m_plain + "_" + std::to_string(index + 1);
}

unsigned AccessNames::indexOf(const std::string& name) const
{
    unsigned index = 0;
    while (index < MOST && at(index) != name) {
        ++index;
    }
    return index;
}

} // namespace ovra::tessel
