/*
 * The snapshot scans of one process, KxRescanState: a scan that comes while another one runs waits for its end on
 * a condition variable, and scans itself when it still has no disk. Whoever waits is woken, however a scan ends:
 * every run is finite, so that one who is not would stand at its end, in an invalid end state.
 *
 * Korvex is installed on the host: without it nobody waits. No wake-up is spurious: one would hide a lost one. The
 * rescan lock is a plain one here; lock.pml has its own steps.
 *
 * With -D...
 *   NOTIFIED_WITHOUT_MUTEX   RunningScan::end does not take the mutex
 *   EARLY_END_IS_SILENT      a scan that is left early, by a signal or an exception, does not end() itself
 *   WAITER_KEEPS_MUTEX       awaitScan gives the mutex up only when the rescan lock is taken
 */

#define SNAPSHOT_SCANS 3
#define NOBODY 255

mtype = { NEVER, RUNNING, ENDED };
mtype scanState = NEVER; /* g_scanState */
byte mutexHolder = NOBODY; /* g_scanLunMutex */
byte lockHolder = NOBODY;  /* KxRescanLock */
bool isAsleep[SNAPSHOT_SCANS]; /* on g_scanlunEndCond, by thread */
byte scans;
byte searchesOfScanners; /* that waiters are kept back for */

inline lockMutex() { atomic { mutexHolder == NOBODY -> mutexHolder = _pid } }
inline unlockMutex()
{
    assert(mutexHolder == _pid);
    mutexHolder = NOBODY
}
inline giveUpMutex()
{
    if
    :: mutexHolder == _pid -> mutexHolder = NOBODY
    :: else
    fi
}
inline takeLock() { atomic { lockHolder == NOBODY -> lockHolder = _pid } }
inline giveLock() { lockHolder = NOBODY }

/* waitForScanEnd: wait() gives the mutex up and falls asleep in one step. */
inline waitForScanEnd()
{
    lockMutex();
    do
    :: scanState == ENDED -> break
    :: else ->
        d_step {
            isAsleep[_pid] = true;
            mutexHolder = NOBODY
        };
        !isAsleep[_pid];
        lockMutex()
    od;
    assert(searchesOfScanners == 0);
#ifndef WAITER_KEEPS_MUTEX
    unlockMutex()
#endif
}

/* RunningScan::end. */
inline endScan()
{
    scanState = ENDED;
#ifndef NOTIFIED_WITHOUT_MUTEX
    lockMutex();
#endif
    d_step {
        isAsleep[0] = false;
        isAsleep[1] = false;
        isAsleep[2] = false
    }
#ifdef NOTIFIED_WITHOUT_MUTEX
    lockMutex()
#endif
}

inline rescanHost()
{
    scans++;
    assert(scans == 1);
    scans--
}

/* scanSnapshotAfterAttach. */
active[SNAPSHOT_SCANS] proctype SnapshotScan()
{
    /* awaitScan (ScanSnapshotPreare) */
    if
    :: scanState == NEVER
    :: else ->
        waitForScanEnd();
        if
        :: goto done /* that scan has brought the disk */
        :: true
        fi
    fi;
    takeLock();
#ifdef WAITER_KEEPS_MUTEX
    giveUpMutex();
#endif
    scanState = RUNNING; /* RunningScan */
    if
    :: rescanHost();
        endScan();
        searchesOfScanners++; /* GetDiskPath, waiters kept back */
        searchesOfScanners--;
        giveLock();
        unlockMutex()
    :: true -> /* left early: ~RunningScan */
#ifndef EARLY_END_IS_SILENT
        endScan();
        unlockMutex();
#endif
        giveLock()
    fi;
done:
#ifdef WAITER_KEEPS_MUTEX
    giveUpMutex();
#endif
    skip
}

/* scanLunAfterAttach, HostTransaction: the lock alone. */
active proctype LunScan()
{
    takeLock();
    rescanHost();
    giveLock()
}
