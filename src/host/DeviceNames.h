#ifndef HOST_DEVICENAMES_H
#define HOST_DEVICENAMES_H

#include <optional>
#include <string>
#include <vector>

namespace ovra::tessel {

// What may go from a listing into a shell command: checked here, all of it.

/** sda, sdaa, ...: a whole SCSI disk. */
bool isDiskName(const std::string& name);

/** dm-0, dm-12, ...: a device-mapper node. */
bool isMapperName(const std::string& name);

/** Where a SCSI device sits: host:channel:target:LUN, each a decimal number. */
struct ScsiAddress
{
    std::string text;
    std::string host;
    std::string lun;

    static std::optional<ScsiAddress> parse(const std::string& text);
};

/** The part of a path from its last "/", e.g. "/sdc". */
std::string lastPart(const std::string& path);

/** The same without the "/". */
std::string lastName(const std::string& path);

/** The words of a line between blanks and tabs. */
std::vector<std::string> wordsOf(const std::string& line);

/** True for a WWN that may go into a shell command; otherwise says in the run log that nothing is done. */
bool isUsableWwn(const std::string& wwn);

} // namespace ovra::tessel

#endif
