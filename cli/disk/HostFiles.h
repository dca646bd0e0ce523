#ifndef DISK_HOSTFILES_H
#define DISK_HOSTFILES_H

#include <string>
#include <vector>

namespace tesselctl {

/** A path of this host, "/sys/block"; below the folder TESSELCTL_ROOT when the environment names one. */
std::string hostPath(const std::string& path);

/** The folders that stand before /sys and /proc: this host's own, and the one that TESSELCTL_ROOT names. */
std::vector<std::string> hostRoots();

bool exists(const std::string& path);

/** The program that a shell would run for a name; empty when there is none. */
std::string findProgram(const std::string& name);

/** The rescan command of the Korvex product. */
constexpr const char* KORVEX_RESCAN = "kxRescan";

/** Whether this process may do what needs the capability (CAP_SYS_ADMIN ...). */
bool hasCapability(int capability);

/** Whether this process may write sysfs and send SCSI commands. */
bool hasScanRights();

/** Throws unless this process may write sysfs and send SCSI commands. */
void requireScanRights(const std::string& work);

} // namespace tesselctl

#endif
