#include "host/KxRescanLock.h"
#include "session/CallsAtWork.h"
#include "session/LastFailure.h"
#include "session/Log.h"

#include <tessel/Exception.h>
#include <tessel/HostTransaction.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <string>
#include <sys/sem.h>
#include <system_error>

namespace ovra::tessel {
namespace {

thread_local bool t_isHeld = false;

/** Looks again that the set is still the one of the key. */
constexpr long LONGEST_NAP_MS = 1000;

timespec monotonic()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now;
}

/** Takes the lock within a nap; 0, or the errno of the attempt. */
int tryFor(int semId, long milliseconds)
{
    sembuf take = {};
    take.sem_op = -1;
    take.sem_flg = SEM_UNDO;
    const timespec nap = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    return semtimedop(semId, &take, 1, &nap) == 0 ? 0 : errno;
}

[[noreturn]] void refuse(const std::string& reason, FailureKind kind = FailureKind::HOST)
{
    throw notedFailure(kind, "no rescan lock: " + reason + "! HostTransaction", true);
}

/** Once: where the semaphore has the ID 0 every making frees it. */
void makeOnce(KxRescanLock& lock)
{
    static std::atomic<bool> isMade{false};
    if (!isMade && lock.InitLock() != 0) {
        refuse("its semaphore cannot be made; the run log says why");
    }
    isMade = true;
}

std::string holderOf(int semId)
{
    const int process = semctl(semId, 0, GETPID);
    return process > 0 ? "process " + std::to_string(process) : std::string("another process");
}

} // namespace

bool isHeldElsewhere()
{
    if (t_isHeld) {
        COMMLOG(OS_LOG_ERROR, "This thread has a HostTransaction: a scan would wait for itself.");
    }
    return t_isHeld;
}

HostTransaction::HostTransaction(unsigned seconds)
{
    const Call call;
    if (t_isHeld) {
        refuse("this thread has it already, in another HostTransaction");
    }
    KxRescanLock lock;
    makeOnce(lock);
    const TimedWait wait;
    const time_t start = monotonic().tv_sec;
    for (;;) {
        const int semId = lock.getSem();
        if (semId < 0) {
            refuse("its semaphore cannot be had; the run log says why");
        }
        const time_t left = start + static_cast<time_t>(seconds) - monotonic().tv_sec;
        const long nap = isLimited() ? LOOK_MILLISECONDS : LONGEST_NAP_MS;
        const int error = tryFor(semId, std::clamp<long>(left * 1000, 0, nap));
        if (error == 0) {
            t_isHeld = true;
            noteHeldLock(semId);
            beginUntold();
            return;
        }
        if (error != EAGAIN && error != EINTR && error != EIDRM) {
            refuse(std::system_category().message(error));
        }
        if (const FailureKind why = whyToEnd(); why != FailureKind::NONE) {
            refuse("the call was ended while it waited for it", why);
        }
        if (left <= 0) {
            refuse(holderOf(semId) + " has held it for more than " + std::to_string(seconds) + " s");
        }
    }
}

HostTransaction::~HostTransaction()
{
    t_isHeld = false;
    KxRescanLock().ReleaseLock();
    endUntold();
}

} // namespace ovra::tessel
