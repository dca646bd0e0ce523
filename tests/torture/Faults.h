#ifndef TORTURE_FAULTS_H
#define TORTURE_FAULTS_H

#include <cstddef>
#include <cstdint>

namespace torture {

/** What fails: allocations, of whoever makes them, or calls of the system. */
enum class Family : int
{
    MEMORY,
    CALLS
};

/** How it fails. */
enum class Mode : int
{
    ONCE,
    LASTING,    ///< from that one on
    INTERRUPTED ///< once, by a signal; calls that a signal can interrupt alone
};

/** Which one fails, counted from 0; a negative number: none, they are counted alone. */
struct Plan
{
    Family family;
    Mode mode;
    long number;
    uint64_t place = 0; ///< not that one then, but from it on the first of this place
};

/** The stacks of the calls that were counted, a hash each; memory that processes share. */
struct Places
{
    static constexpr size_t MOST = 1UL << 20U;
    uint64_t hashes[MOST];
    long reached; ///< calls that were counted when it was disarmed
};

/** From now on calls of every thread of this process are counted, from 0, and fail as planned. */
void arm(const Plan& plan, Places* places = nullptr);
/** Ends that. @return how many were counted. */
long disarm();
/** Whether a call has failed since the last arm(). */
bool hasFired();
/** The place of the first call that has failed since then, as a hash of its stack. */
uint64_t placeFired();
/** The first call that fails writes its stack to this file. */
void tellWhereItFires(int file);
/** Blocks of memory that are in use. */
long liveBlocks();

/** While one lives, calls of this thread are neither counted nor failed. */
class Aside
{
public:
    Aside();
    ~Aside();
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;
};

// For what stands in the place of the C library's functions.

/** Whether this allocation is to fail. */
bool failsMemory();
/** Whether this call is to fail; errno is set then, to the error given or to EINTR. */
bool failsCall(int error, bool canBeInterrupted = false);
void countBlocks(long more);

} // namespace torture

#endif
