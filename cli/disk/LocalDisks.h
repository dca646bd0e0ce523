#ifndef TESSELCTL_DISK_LOCALDISKS_H
#define TESSELCTL_DISK_LOCALDISKS_H

#include <string>
#include <vector>

namespace tesselctl {

/// The identities that a device identification page (0x83) holds for the logical unit, in lower case.
std::vector<std::string> unitIdentities(const std::string& page);

/**
 * The disks of this host ("sdc") that carry a WWN, by what the kernel keeps of their identity in sysfs: no
 * command is sent to any device. None for an empty WWN.
 */
std::vector<std::string> disksWithWwn(const std::string& wwn);

/// What keeps a disk in use, a sentence each ("sdc1 is mounted on /data"); empty when nothing does.
std::vector<std::string> usesOf(const std::string& disk);

} // namespace tesselctl

#endif
