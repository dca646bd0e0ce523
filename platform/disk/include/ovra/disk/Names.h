#ifndef OVRA_DISK_NAMES_H
#define OVRA_DISK_NAMES_H

#include <optional>
#include <string>
#include <vector>

// What may go from a listing into a path or a shell command: checked here, all of it.

namespace ovra::disk {

/** sda, sdaa, ...: a whole SCSI disk. */
bool isDiskName(const std::string& name);

/** dm-0, dm-12, ...: a device-mapper node. */
bool isMapperName(const std::string& name);

/** A name that a node below /dev may have, and that a shell takes for nothing but a word. */
bool isNodeName(const std::string& name);

/** How the UUID of a multipath map begins; its WWID follows. */
constexpr const char* MULTIPATH_UUID = "mpath-";

/** A name in /dev/mapper, 127 bytes at most, that a shell and a command take for nothing but a word. */
bool isMapName(const std::string& name);

/** True for a WWN that may go into a shell command; an empty one may not. */
bool isPlainWwn(const std::string& wwn);

/** Where a SCSI device sits: host:channel:target:LUN, each a decimal number. */
struct ScsiAddress
{
    std::string text;
    std::string host;
    std::string lun;

    std::string target() const { return text.substr(0, text.rfind(':')); } ///< host:channel:target

    static std::optional<ScsiAddress> parse(const std::string& text);
};

/** The part of a path from its last "/", e.g. "/sdc". */
std::string lastPart(const std::string& path);

/** The same without the "/". */
std::string lastName(const std::string& path);

/** The words of a line between blanks and tabs. */
std::vector<std::string> wordsOf(const std::string& line);

} // namespace ovra::disk

#endif
