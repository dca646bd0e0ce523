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

/** Page 0x83 of a device; none when it does not answer. One that is known to be dead is not asked. */
std::optional<std::string> readPage83(const std::string& path);

/** Who a device is, asked of itself; empty texts when it cannot be read. */
DiskIdentity readIdentity(const std::string& path);

// The same for those who take silence for an answer: these throw Unreadable where it is this process that
// cannot ask, for want of a descriptor, memory or the right to. They open the device to be read only: after
// one that was open to be written udev looks at it anew, for seconds with many of them, and a map on it
// cannot be removed meanwhile.

/** Who a device is; empty texts when it does not answer. */
DiskIdentity askIdentity(const std::string& path);

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
