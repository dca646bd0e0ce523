#ifndef OVRA_DISK_LSSCSI_H
#define OVRA_DISK_LSSCSI_H

#include "ovra/disk/Names.h"

#include <optional>
#include <string>

namespace ovra::disk {

/** The SCSI disk that a whole line of lsscsi ends in, e.g. /dev/sdc; lsscsi pads short names with blanks. */
std::optional<std::string> diskOfLine(const std::string& line);

/** The address that a line of lsscsi begins with, if it is the line of this device. */
std::optional<ScsiAddress> addressOfLine(const std::string& line, const std::string& device);

} // namespace ovra::disk

#endif
