#ifndef HOST_KORVEX_H
#define HOST_KORVEX_H

#include <ovra/disk/Programs.h>

#include <atomic>
#include <string>

// The Korvex multipath product, which manages its own devices where it is installed.

extern std::atomic<bool> g_korvexInstalled; ///< its rescan command was found; never cleared
extern std::string g_kxRescanTimeout;       ///< seconds that its rescan may take
extern std::string g_tmpBlockCheckCmd;      ///< succeeds while there are temporary devices

namespace ovra::tessel {

/** Looks for the product's rescan command, and says when it cannot be told whether it is there. */
disk::Presence lookForKorvex();

/** What is known without looking again; looks in PATH where no command could tell. */
disk::Presence knownKorvex();

/** False where the product is installed, or may be: then no device is removed. */
bool mayRemoveDevices();

} // namespace ovra::tessel

#endif
