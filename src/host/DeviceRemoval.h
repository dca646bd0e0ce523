#ifndef HOST_DEVICEREMOVAL_H
#define HOST_DEVICEREMOVAL_H

#include <ovra/disk/ReadIdentity.h>

#include <functional>
#include <string>

namespace ovra::tessel {

using IsWanted = std::function<bool(const disk::DiskIdentity&)>;

/** Checks that a WWN may go into a shell command; otherwise says in the run log that nothing is done. */
bool checkWwn(const std::string& wwn);

/**
 * What is due before a disk is removed: says in the run log what still uses it, writes its data back, and, as
 * the last thing, asks the disk once more who it is.
 * @param path by which the disk is opened
 * @param device its name, e.g. /dev/sdc
 * @return false when it is not the wanted one: it has become another disk meanwhile, or does not answer.
 */
bool prepareRemoval(const std::string& path, const std::string& device, const IsWanted& isWanted);

/**
 * Removes the SCSI devices with this identity, at most five rounds, until one of them has removed none.
 * @param label what log lines call the object
 * @return false when the devices could not be listed.
 */
bool removeDevices(const char* label, const disk::DiskIdentity& wanted);

} // namespace ovra::tessel

#endif
