#ifndef HOST_FULLSEARCH_H
#define HOST_FULLSEARCH_H

#include <tessel/Handler.h>

#include <string>

namespace ovra::tessel {

/** Finds a disk, by its name where that is enough, else among all of this host; the ID is only logged. */
std::string findDisk(const std::string& objectId, const std::string& wwn, MOType type);

} // namespace ovra::tessel

#endif
