/*
 * The rescan lock: a System V semaphore, 1 when free, that processes take with SEM_UNDO and set free with SETVAL.
 * Each of them may be killed at any moment. Never two may scan at once, and at rest the lock is free.
 *
 * The set is not removed from outside.
 *
 * With -D...
 *   WITHOUT_UNDO         taken without SEM_UNDO
 *   ADDED_WITHOUT_UNDO   given back by adding 1 without SEM_UNDO
 *   WAITS_FOR_ITSELF     a scan within a HostTransaction does not ask isHeldElsewhere
 *   ID_ZERO              the set has the ID 0, which InitLock takes for none
 *   FIRST_START          no process has made the set since this host was started
 *   VICTIMS=N            so many may be killed, not all
 *   OVERLAPS_ARE_KNOWN   looks on when two scan at once
 */

#define PROCESSES 3
#define MISSING 255
#ifndef VICTIMS
#define VICTIMS PROCESSES
#endif

#ifdef ID_ZERO
#define ID 0
#else
#define ID 1
#endif

#ifdef FIRST_START
bool isMade;
byte value;
#else
bool isMade = true;
byte value = 1;
#endif

byte undo[PROCESSES]; /* what the kernel adds for a process that ends */
bool isKilled[PROCESSES];
bool isScanning[PROCESSES];
byte scans;
bool isLost;

/* KxRescanLock::unlockSem. SETVAL forgets what was to be undone, of all processes. */
inline setFree()
{
    d_step {
        value = 1;
        undo[0] = 0;
        undo[1] = 0;
        undo[2] = 0
    }
}

/*
 * KxRescanLock::InitLock looks, makes and sets free in steps of their own. Once the set is there nothing comes of
 * it; before that, two starts at the same time and a kill between the steps do harm, as FIRST_START shows.
 */
inline initLock()
{
    existing = (isMade -> ID : MISSING);
    if
    :: existing != MISSING && existing >= 1
    :: else ->
        isMade = true; /* getSem: with value 0 where there is none, and that it has then */
        setFree()
    fi
}

/* KxRescanLock::lockSem, tryFor. */
inline take()
{
    d_step {
        value > 0 ->
        value--;
#ifndef WITHOUT_UNDO
        undo[me]++
#endif
    }
}

/* KxRescanLock::ReleaseLock: by SETVAL, or, where that is refused, by adding. */
inline give()
{
    if
    :: setFree()
#ifdef ADDED_WITHOUT_UNDO
    :: value++
#else
    :: d_step {
           undo[me] > 0 ->
           value++;
           undo[me]--
       }
#endif
    fi
}

inline scan()
{
    d_step {
        isScanning[me] = true;
        scans++
    };
#ifndef OVERLAPS_ARE_KNOWN
    assert(scans == 1);
#endif
    d_step {
        isScanning[me] = false;
        scans--
    }
}

/* HeldRescanLock and rescanHost, within a HostTransaction of the same thread: refused at once. */
inline scanWithin()
{
#ifdef WAITS_FOR_ITSELF
    take()
#else
    skip
#endif
}

/*
 * The kernel, for a process that ends: its threads have left the scan, then what they did to the semaphore is
 * undone. (A child that it had scan goes on: UNLOCKED_SCAN of release.pml.)
 */
inline die()
{
    d_step {
        scans = scans - isScanning[me];
        isScanning[me] = false;
        value = value + undo[me];
        undo[me] = 0
    }
}

inline work()
{
    initLock();
    if
    :: take();
        scan();
        scanWithin();
        give()
    :: true /* HostTransaction: the time is up, it refuses */
    fi
}

proctype Process(byte me)
{
    byte existing;
    { work(); work() } unless { isKilled[me] };
    die()
}

proctype Killer(byte victim) /* at any moment, or never */
{
    if
    :: victim < VICTIMS -> isKilled[victim] = true
    :: true
    fi
}

init
{
    atomic {
        run Process(0);
        run Process(1);
        run Process(2);
        run Killer(0);
        run Killer(1);
        run Killer(2)
    };
    timeout; /* nobody can do anything any more */
    isLost = isMade && value == 0;
    assert(!isLost);
    assert(value <= 1)
}
