/*
 * A LUN is released while other jobs of this host scan. At rest no disk may be left that the array no longer
 * shows.
 *
 * Left out: what a rescan with -r removes (it is not always allowed to), and the array's other LUNs. The array
 * does what it is sent in that order. The lock is a plain one that dies with its holder; lock.pml has its own
 * steps.
 *
 * With -D...
 *   WITHOUT_GUARD   Release::run without its HostTransaction
 *   SINGLE_STEPS    scanLunBeforeDetach, then detachLunFromHost: no lock, no look behind
 *   GUARDED_STEPS   the same two, in a HostTransaction of the program's
 *   UNLOCKED_SCAN   a scan without the lock beside it: a script of somebody, one whose parent was killed, or one
 *                   that doWithin has left to itself
 *   SAME_LUN        the scans are those of jobs that attach the same LUN, and show it first
 *   KILLED          the releasing process is killed somewhere, and the same call comes again
 *   NOT_AGAIN       KILLED, and it does not
 */

#define NOBODY 255
#define SCANNERS 2
#define RELEASE 0 /* the places in isHidden */
#define SAME_CALL_AGAIN 1

bool isShown = true; /* by the array, to this host */
bool isDisk = true;  /* in this host's kernel; dead where it is not shown */

byte holder = NOBODY; /* of the rescan lock */
byte scanning;        /* under it */
bool isKilled;
bool isDeadDiskLeft, isLockLost;

chan hideRequests = [2] of { byte }; /* on their way: they arrive also when their sender is dead */
bool isHidden[2];                    /* its answer, by sender */

inline takeLock() { atomic { holder == NOBODY -> holder = _pid } } /* HostTransaction, KxRescanLock::GetLock */
inline giveLock() { holder = NOBODY }                              /* ~HostTransaction, KxRescanLock::ReleaseLock */

/* The kernel asks the target what there is, and makes the disks later. */
inline scan()
{
    seen = isShown;
    isDisk = isDisk || seen;
    seen = false
}

/* Release::remove, removeDevices: until none is left. */
inline removeDisk()
{
    do
    :: isDisk -> isDisk = false
    :: else -> break
    od
}

/* ensureHidden, detachLunFromHost: over the wire, and nothing where it is hidden already. */
inline hide(sender)
{
    if
    :: isShown -> hideRequests ! sender; isHidden[sender]
    :: else
    fi
}

/* Release::run. */
inline release(sender)
{
#if !defined(WITHOUT_GUARD) && !defined(SINGLE_STEPS)
    takeLock();
#endif
    removeDisk();
    hide(sender);
#if !defined(SINGLE_STEPS) && !defined(GUARDED_STEPS)
    removeDisk();
#endif
#if !defined(WITHOUT_GUARD) && !defined(SINGLE_STEPS)
    giveLock();
#endif
}

/* What the kernel does for a process that ends. A call that throws gives the lock back just so. */
inline die()
{
    d_step {
        if
        :: holder == _pid -> holder = NOBODY
        :: else
        fi
    }
}

active proctype Array()
{
    byte sender;
end:
    do
    :: hideRequests ? sender -> isShown = false; isHidden[sender] = true
    od
}

active proctype Job()
{
#ifdef KILLED
    { release(RELEASE) } unless { isKilled };
    die();
#ifndef NOT_AGAIN
    release(SAME_CALL_AGAIN)
#endif
#else
    release(RELEASE)
#endif
}

#ifdef KILLED
active proctype Killer() /* at any moment, or never */
{
    if
    :: isKilled = true
    :: true
    fi
}
#endif

/* scanLunAfterAttach, findDisks: another job's, for a LUN of its own. The script runs twice. */
active[SCANNERS] proctype Scanner()
{
    bool seen;
#ifdef SAME_LUN
    isShown = true; /* ensureVisible */
#endif
    takeLock();
    scanning++;
    assert(scanning == 1);
    scan();
    scan();
    scanning--;
    giveLock()
}

#ifdef UNLOCKED_SCAN
active proctype Stranger()
{
    bool seen;
    scan()
}
#endif

active proctype Rest()
{
    timeout; /* nobody can do anything any more */
    isDeadDiskLeft = isDisk && !isShown;
    assert(!isDeadDiskLeft);
    isLockLost = holder != NOBODY;
    assert(!isLockLost)
}
