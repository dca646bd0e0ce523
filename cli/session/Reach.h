#ifndef SESSION_REACH_H
#define SESSION_REACH_H

#include "network/ArrayAddress.h"

#include <string>

namespace tesselctl {

/** Whether the array can be talked to, and what to do when not. */
struct Reach
{
    bool reached = false;
    std::string advice; ///< empty when reached
};

/**
 * Opens a connection as the REST library's settings ask for and looks how far it comes: TCP, TLS, trust. The
 * library itself tells no more than that a request failed.
 */
Reach tryReach(const ArrayAddress& address);

/** The directory that the SDK's run log is really written to; known once there is a session. */
std::string logDirectory();

} // namespace tesselctl

#endif
