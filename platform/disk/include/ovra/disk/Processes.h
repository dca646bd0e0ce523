#ifndef OVRA_DISK_PROCESSES_H
#define OVRA_DISK_PROCESSES_H

#include <string>
#include <vector>

// The processes of this host, as /proc shows them. The root, where one is given, stands before /proc and
// /sys. Unreadable is thrown where it cannot be told what there is.

namespace ovra::disk {

/** The numbers of those that this process sees. */
std::vector<std::string> processes(const std::string& root = std::string());

/**
 * Who has one of these nodes ("sdc", "dm-3") open, by this name or by another one, as in a container, e.g.
 * "sdc is open in process 4711 (dd)". Those that look after all disks, udev and multipathd, are left out.
 */
std::vector<std::string> openersOf(const std::vector<std::string>& nodes,
                                   const std::string& root = std::string());

/**
 * Whether a program of this host may run, by the name of its process. False is sure: where this process does
 * not see those of the whole host, as in a container, any program may.
 */
bool mayRun(const std::string& program, const std::string& root = std::string());

} // namespace ovra::disk

#endif
