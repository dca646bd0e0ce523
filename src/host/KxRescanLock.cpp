#include "host/KxRescanLock.h"

#include "session/CallsAtWork.h"
#include "session/Log.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <optional>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

constexpr key_t RESCAN_KEY = 1235;
constexpr int SEMAPHORES = 1;
constexpr int LOCK = 0; // the number of the semaphore in its set
constexpr int ACCESS = 0600;
constexpr time_t LONG_WAIT_S = 60;

thread_local int t_heldId = -1; ///< by which this thread has taken the lock
std::atomic<int> g_owedId{-1};  ///< by which this process holds it since it could not be given back

/** What semctl takes: the kernel wants an argument of this size. */
union SemaphoreArgument {
    int value;
    semid_ds* set;
};

/** A set of nobody's. While it lives, a set that is made does not get the ID 0, the first one of all. */
class OtherSet
{
public:
    OtherSet() : m_id(semget(IPC_PRIVATE, SEMAPHORES, ACCESS)) {}
    ~OtherSet()
    {
        if (m_id >= 0) {
            semctl(m_id, LOCK, IPC_RMID);
        }
    }
    OtherSet(const OtherSet&) = delete;
    OtherSet& operator=(const OtherSet&) = delete;

    bool isMade() const { return m_id >= 0; }

private:
    const int m_id;
};

int change(int semId, short by, short flags, const timespec* limit)
{
    sembuf operation = {};
    operation.sem_num = LOCK;
    operation.sem_op = by;
    operation.sem_flg = flags;
    return limit != nullptr ? semtimedop(semId, &operation, 1, limit) : semop(semId, &operation, 1);
}

time_t now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec;
}

/** Frees a semaphore; -1 when that fails. */
int setFree(int semId)
{
    SemaphoreArgument free = {};
    free.value = 1;
    return semctl(semId, LOCK, SETVAL, free) == -1 ? -1 : 0;
}

void sayWhoHolds(int semId)
{
    semid_ds set = {};
    SemaphoreArgument argument = {};
    argument.set = &set;
    const bool isKnown = semctl(semId, LOCK, IPC_STAT, argument) == 0;
    COMMLOG(
        OS_LOG_WARN,
        "Waiting for the rescan lock for more than %d s: process %d holds it. Its semaphore [%d] is that of "
        "user %d.",
        static_cast<int>(LONG_WAIT_S), semctl(semId, LOCK, GETPID), semId,
        isKnown ? static_cast<int>(set.sem_perm.uid) : -1);
}

/** Frees what this process owes, unless another one has had it since: freed from outside, it is that one's
 * now. */
void payBack()
{
    const int owed = g_owedId.exchange(-1);
    if (owed < 0) {
        return;
    }
    const int last = semctl(owed, LOCK, GETPID);
    if (last == -1 || (last == getpid() && setFree(owed) != 0)) {
        g_owedId = owed;
    }
}

} // namespace

void ovra::tessel::noteHeldLock(int semId)
{
    t_heldId = semId;
    g_owedId = -1; // somebody has freed it meanwhile
}

int KxRescanLock::getSem()
{
    payBack();
    const int semId = semget(RESCAN_KEY, SEMAPHORES, IPC_CREAT | 0600);
    if (semId < 0) {
        COMMLOG(OS_LOG_ERROR, "Create sem failed.");
    }
    return semId;
}

int KxRescanLock::lockSem(int semId)
{
    const timespec slice = isLimited() ? timespec{0, LOOK_MILLISECONDS * 1000000} : timespec{LONG_WAIT_S, 0};
    const timespec* limit = &slice; // none for the older call, which a filter of system calls may know alone
    const time_t start = now();
    bool told = false;
    for (;;) {
        if (whyToEnd() != FailureKind::NONE) {
            return -1;
        }
        if (change(semId, -1, SEM_UNDO, limit) == 0) {
            return 0;
        }
        if (errno == EINTR || errno == EAGAIN) {
            if (!told && now() - start >= LONG_WAIT_S) {
                told = true;
                sayWhoHolds(semId);
            }
        } else if (limit != nullptr && errno != EIDRM) {
            limit = nullptr;
        } else {
            return -1;
        }
    }
}

int KxRescanLock::unlockSem(int semId)
{
    return setFree(semId);
}

int KxRescanLock::InitLock()
{
    const int existing = semget(RESCAN_KEY, SEMAPHORES, IPC_EXCL);
    if (existing >= 1) {
        COMMLOG(OS_LOG_INFO, "Sem exists.SemId:[%d]", existing);
        return 0;
    }
    if (existing == 0) { // docs/oddities.md#semaphore-0
        COMMLOG(OS_LOG_WARN,
                "The rescan lock has the ID 0: every program that starts frees it, so that rescans "
                "may overlap. Remove it (ipcrm -S 1235) while no program that scans is running.");
    }
    std::optional<OtherSet> other;
    if (existing < 0) {
        other.emplace();
    }
    int semId = getSem();
    if (semId < 0 && other && other->isMade()) {
        other.reset(); // it may have been the last set that this host can have
        semId = getSem();
    }
    if (semId < 0 || unlockSem(semId) != 0) {
        COMMLOG(OS_LOG_ERROR, "Init Lock failed.");
        return -1;
    }
    COMMLOG(OS_LOG_INFO, "InitLock Succeed.New semId:[%d]", semId);
    return 0;
}

int KxRescanLock::GetLock()
{
    t_heldId = -1;
    const int semId = getSem();
    if (semId < 0 || lockSem(semId) != 0) {
        COMMLOG(OS_LOG_ERROR, "Lock sem[%d] failed.", semId);
        return -1;
    }
    noteHeldLock(semId);
    return 0;
}

int KxRescanLock::ReleaseLock()
{
    const int heldId = t_heldId;
    t_heldId = -1;
    const int semId = getSem();
    if (semId >= 0 && unlockSem(semId) == 0) {
        return 0;
    }
    // Nobody could scan until this process ends: the way that it was taken may still be open.
    if (heldId >= 0 && (unlockSem(heldId) == 0 || change(heldId, 1, SEM_UNDO | IPC_NOWAIT, nullptr) == 0)) {
        COMMLOG(OS_LOG_WARN,
                "The rescan lock could only be given back by the ID that it was taken with [%d].", heldId);
        return 0;
    }
    g_owedId = heldId; // whoever wants it next in this process tries again first
    COMMLOG(OS_LOG_ERROR, "UnLock sem[%d] failed.", semId);
    return -1;
}
