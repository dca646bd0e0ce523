#ifndef HOST_KXRESCANLOCK_H
#define HOST_KXRESCANLOCK_H

#include "observer/Observers.h"
#include "observer/Steps.h"

/**
 * A lock over every process and thread of this host that rescans its SCSI buses: a System V semaphore that is
 * 1 when free and 0 when held. All operations return 0, or -1 after a line in the run log.
 */
class KxRescanLock
{
public:
    /** The semaphore's id, made with value 0 when it is missing; negative on failure. */
    int getSem();
    /** Waits without limit. The kernel frees the lock when its holder dies. */
    int lockSem(int semId);
    /** Frees the lock, held or not. */
    int unlockSem(int semId);

    /** Makes the semaphore, free, when it is missing; once per process. */
    int InitLock();
    int GetLock();
    int ReleaseLock();
};

namespace ovra::tessel {

/** Says by which ID this thread has taken the lock, beside GetLock: ReleaseLock gives it back by that where
 * it must. */
void noteHeldLock(int semId);

/** Whether this thread has a HostTransaction, and so would wait for itself; says so in the run log. */
bool isHeldElsewhere();

/** Holds the rescan lock until it goes out of scope. */
class HeldRescanLock
{
public:
    explicit HeldRescanLock(KxRescanLock& lock) : m_lock(lock), m_held(take(lock)) {}
    ~HeldRescanLock()
    {
        if (m_held) {
            m_lock.ReleaseLock();
        }
    }
    HeldRescanLock(const HeldRescanLock&) = delete;
    HeldRescanLock& operator=(const HeldRescanLock&) = delete;

    explicit operator bool() const { return m_held; }

private:
    static bool take(KxRescanLock& lock)
    {
        const TimedWait wait;
        return !isHeldElsewhere() && lock.GetLock() == 0;
    }

    const Untold m_untold; ///< goes last
    KxRescanLock& m_lock;
    const bool m_held;
};

} // namespace ovra::tessel

#endif
