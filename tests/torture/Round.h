#ifndef TORTURE_ROUND_H
#define TORTURE_ROUND_H

#include <string>

namespace torture {

/** The array, and how to log in to it. */
struct Target
{
    std::string ip;
    unsigned port = 0;
    std::string user;
    std::string password;
};

/** What was seen of one round. */
struct Seen
{
    unsigned problems = 0;       ///< each of which was told on standard error
    char firstFailure[256] = ""; ///< what it was
    unsigned failures = 0;       ///< that the operations told, as they should
    bool isSessionKnown = true;  ///< false: a login told that the array may have opened a session
};

/**
 * Login, a LUN made, attached, scanned for, removed and detached, then used as a LocalDisk, and logout.
 * Whatever fails meanwhile is to come out as an exception of the two classes or as a std::bad_alloc, and what
 * does not fail is to be right.
 */
Seen runRound(const Target& target);

} // namespace torture

#endif
