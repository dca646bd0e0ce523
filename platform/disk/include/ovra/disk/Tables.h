#ifndef OVRA_DISK_TABLES_H
#define OVRA_DISK_TABLES_H

#include <string>
#include <vector>

namespace ovra::disk {

/** A line of /proc/PID/mountinfo, as far as it tells which disk is mounted where. */
struct Mount
{
    std::string device; ///< "8:33"; some file systems have a number of their own there
    std::string source; ///< "/dev/sdc1"
    std::string point;
};

/** The mounts in the text of a mountinfo. */
std::vector<Mount> parseMounts(const std::string& mountinfo);

/** The swap areas in the text of /proc/swaps, e.g. /dev/sdc1. */
std::vector<std::string> parseSwaps(const std::string& swaps);

} // namespace ovra::disk

#endif
