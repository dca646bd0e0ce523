#ifndef OVRA_DISK_PROGRAMS_H
#define OVRA_DISK_PROGRAMS_H

#include <string>
#include <vector>

namespace ovra::disk {

/** Where the shell looks for programs: PATH, or what it takes where the environment has none. */
std::string searchPath();

/** The file that the shell runs for a name, given the value of PATH; empty when there is none. */
std::string findInPath(const std::string& name, const std::string& path = searchPath());

/** Every file of that name in PATH that can be run, the one that the shell runs first. */
std::vector<std::string> findAllInPath(const std::string& name, const std::string& path = searchPath());

enum class Presence
{
    ABSENT,
    PRESENT,
    UNKNOWN ///< a directory in PATH cannot be looked into
};

/** Whether the shell would find a program of that name. */
Presence presenceOf(const std::string& name, const std::string& path = searchPath());

} // namespace ovra::disk

#endif
