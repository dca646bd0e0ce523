#ifndef HOST_NAMESEARCH_H
#define HOST_NAMESEARCH_H

#include <ovra/disk/ByIdLink.h>

#include <optional>
#include <string>

namespace ovra::tessel {

/** Reads a line of the listing; says in the run log which link is left out for the name that it leads to. */
std::optional<disk::ByIdLink> parseLink(const std::string& line);

/** Reads the size and state of a disk again into the kernel. */
void rescanDevice(const std::string& path);

/** Finds a disk among the names that hold its WWN; only with the Korvex product. */
std::string findByName(const std::string& wwn);

} // namespace ovra::tessel

#endif
