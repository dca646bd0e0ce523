#ifndef HOST_ENDCOMMANDS_H
#define HOST_ENDCOMMANDS_H

#include <sys/types.h>

namespace ovra::tessel {

/**
 * Ends the processes that a thread of this process has started, and all that these have started: none is left
 * behind without its parent. Whoever waits for them collects them. Where the kernel does not tell what a
 * thread has started, nothing is ended.
 */
void endCommandsOf(pid_t thread);

} // namespace ovra::tessel

#endif
