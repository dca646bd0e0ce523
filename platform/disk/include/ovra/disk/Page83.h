#ifndef OVRA_DISK_PAGE83_H
#define OVRA_DISK_PAGE83_H

#include <optional>
#include <string>
#include <vector>

namespace ovra::disk {

/** What a disk says it is. */
struct DiskIdentity
{
    std::string wwn;   ///< the first designator in lowercase hexadecimal
    std::string lunId; ///< the array's number of the LUN, decimal
};

/**
 * The identity in the bytes of an INQUIRY page 0x83. Only the first designator counts, whatever its kind, and
 * bytes 20 to 23, where the array keeps its LUN ID (as a signed number of 32 bits: the array's own programs
 * print it so). A page that is shorter reads as if zeros followed.
 * @return none when the designator has 32 bytes or more.
 */
std::optional<DiskIdentity> parsePage83(const std::string& page);

/** Every designator of the logical unit in a page 0x83, in lower case: hexadecimal, or text as it is. */
std::vector<std::string> unitDesignators(const std::string& page);

} // namespace ovra::disk

#endif
