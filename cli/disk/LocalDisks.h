#ifndef DISK_LOCALDISKS_H
#define DISK_LOCALDISKS_H

#include <string>
#include <vector>

namespace tesselctl {

/** The disks ("sdc") of this host, and of the one that TESSELCTL_ROOT names, that carry a WWN. */
std::vector<std::string> disksWithWwn(const std::string& wwn);

/**
 * What keeps these disks in use, or may do, a sentence each ("sdc1 is mounted on /data"). The real host is
 * always looked at: the removal works on it.
 */
std::vector<std::string> usesOfDisksWith(const std::string& wwn);

} // namespace tesselctl

#endif
