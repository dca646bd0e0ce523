#ifndef HOST_BYIDLINK_H
#define HOST_BYIDLINK_H

#include <optional>
#include <string>

namespace ovra::tessel {

/** A whole disk of the listing of /dev/disk/by-id. */
struct ByIdLink
{
    std::string path;       ///< e.g. /dev/disk/by-id/../../sdc
    std::string identifier; ///< what the link's name says of the disk's identity; empty when it says nothing

    /** Reads a line of the listing; none when it does not end in a disk or device-mapper node. */
    static std::optional<ByIdLink> parse(const std::string& line);
};

} // namespace ovra::tessel

#endif
