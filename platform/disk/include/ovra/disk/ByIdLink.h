#ifndef OVRA_DISK_BYIDLINK_H
#define OVRA_DISK_BYIDLINK_H

#include <optional>
#include <string>

namespace ovra::disk {

constexpr const char* BY_ID_DIRECTORY = "/dev/disk/by-id/";

/** A link in the listing of /dev/disk/by-id. */
struct ByIdLink
{
    std::string path;       ///< e.g. /dev/disk/by-id/../../sdc
    std::string identifier; ///< what the link's name says of the disk's identity; empty when it says nothing

    /** True for a line that shows a link, whether or not its target may be used. */
    static bool isLink(const std::string& line);

    /** Reads a line of the listing; none when it does not end in the harmless name of a node below /dev. */
    static std::optional<ByIdLink> parse(const std::string& line);
};

/** What a name in /dev/disk/by-id, e.g. scsi-3600a0b80, says of the identity; empty when nothing. */
std::string identifierOf(const std::string& name);

} // namespace ovra::disk

#endif
