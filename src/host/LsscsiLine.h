#ifndef HOST_LSSCSILINE_H
#define HOST_LSSCSILINE_H

#include "host/DeviceNames.h"

#include <optional>
#include <string>

namespace ovra::tessel {

/** The command that lists the SCSI devices. */
inline constexpr const char* LSSCSI = "lsscsi";

/** The disk that a line of lsscsi ends in, e.g. /dev/sdc; lsscsi prints a blank behind it. */
std::optional<std::string> diskOfLine(const std::string& line);

/** The address that a line of lsscsi begins with, if it is the line of this device. */
std::optional<ScsiAddress> addressOfLine(const std::string& line, const std::string& device);

} // namespace ovra::tessel

#endif
