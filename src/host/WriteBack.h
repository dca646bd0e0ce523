#ifndef HOST_WRITEBACK_H
#define HOST_WRITEBACK_H

#include <string>

// What waits for a disk in the memory of this host, and would be lost with it. Both return "" when it was
// written, else why not; both write no log.

namespace ovra::tessel {

/** Of a device: what a file system mounted from it keeps, and the cache of the disk itself. */
std::string writeBackDevice(const std::string& path);

/** Of the file system that a path leads into. */
std::string writeBackMount(const std::string& path);

} // namespace ovra::tessel

#endif
