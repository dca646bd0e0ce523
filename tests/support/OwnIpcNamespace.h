#ifndef SUPPORT_OWNIPCNAMESPACE_H
#define SUPPORT_OWNIPCNAMESPACE_H

#include <sched.h>

/**
 * Gives the process System V semaphores of its own: making a disk scanner makes the rescan lock, and the
 * machine's is not a test's to touch. False where that is not allowed.
 */
inline bool enterOwnIpcNamespace()
{
    return unshare(CLONE_NEWIPC) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWIPC) == 0;
}

#endif
