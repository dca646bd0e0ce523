#ifndef SIMULATOR_EXPORT_NUMBEREDLINKS_H
#define SIMULATOR_EXPORT_NUMBEREDLINKS_H

#include "export/ConfigFs.h"

namespace arraysim {

// The directories lun_N of a target, each with a link to what it shows.

/** The numbered directory in a directory that links to another one; empty where there is none. */
std::filesystem::path numberedLink(const std::filesystem::path& in, const std::filesystem::path& to);

/** The directory lun_N with the lowest number from first on that does not exist, made. */
std::filesystem::path makeNextNumber(ConfigFs& config, const std::filesystem::path& in, int first);

/** Directories of configfs go by themselves alone; their links first. */
void removeWithLinks(ConfigFs& config, const std::filesystem::path& directory);

} // namespace arraysim

#endif
