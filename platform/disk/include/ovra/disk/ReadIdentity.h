#ifndef OVRA_DISK_READIDENTITY_H
#define OVRA_DISK_READIDENTITY_H

#include "ovra/disk/Page83.h"

#include <optional>
#include <string>

namespace ovra::disk {

constexpr unsigned int PAGE_BYTES = 256;

/**
 * One INQUIRY for a vital product data page, at most 60 seconds long.
 * @param buffer of PAGE_BYTES bytes
 * @return 0, or -1 when the device did not answer.
 */
int inquire(int descriptor, unsigned char page, unsigned char* buffer);

/** How a device is opened to be asked. */
enum class Opened
{
    READ_ONLY,
    READ_WRITE ///< read-only where that is refused. Closing it makes udev look at the device anew: for
               ///< seconds, with many of them, and a map on it cannot be removed meanwhile.
};

/** Page 0x83 of a device; none when it does not answer. One that is known to be dead is not asked. */
std::optional<std::string> readPage83(const std::string& path, Opened how = Opened::READ_WRITE);

/** Who a device is, asked of itself; empty texts when it cannot be read. */
DiskIdentity readIdentity(const std::string& path, Opened how = Opened::READ_WRITE);

/** What a device says of itself. */
struct DiskAnswer
{
    std::string page;       ///< page 0x83; empty when it gives none
    bool hasNoUnit = false; ///< its target says that nothing is connected at its LUN number
};

/** Asks a device for its page 0x83, and where it gives none, whether it is there at all. One that is known to
 * be dead is not asked. */
DiskAnswer askDisk(const std::string& path);

} // namespace ovra::disk

#endif
