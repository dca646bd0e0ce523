#ifndef HOST_DEVICEUSE_H
#define HOST_DEVICEUSE_H

#include <map>
#include <string>
#include <vector>

namespace ovra::tessel {

/** Names of a disk and its partitions by device number: {"8:32": "sdc", "8:33": "sdc1"}. */
using BlockDevices = std::map<std::string, std::string>;

/**
 * What uses a disk or one of its partitions, in words for the run log: "sdc1 is mounted on /data", "sdc2 is
 * used as swap", "sdc is held by dm-3".
 * @param root stands before /proc and /sys
 */
std::vector<std::string> usesOf(const std::string& disk, const std::string& root = std::string());

/** The mounts of these devices in the text of /proc/self/mountinfo. */
std::vector<std::string> mountsOf(const BlockDevices& devices, const std::string& mountinfo);

/** The swap areas on these devices in the text of /proc/swaps. */
std::vector<std::string> swapsOn(const BlockDevices& devices, const std::string& swaps);

} // namespace ovra::tessel

#endif
