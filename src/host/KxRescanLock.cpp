#include "host/KxRescanLock.h"

#include "session/Log.h"

#include <cerrno>
#include <sys/ipc.h>
#include <sys/sem.h>

namespace {

const key_t RESCAN_KEY = 1235;
const int SEMAPHORES = 1;
const int LOCK = 0; // the number of the semaphore in its set

} // namespace

int KxRescanLock::getSem()
{
    const int semId = semget(RESCAN_KEY, SEMAPHORES, IPC_CREAT | 0600);
    if (semId < 0) {
        COMMLOG(OS_LOG_ERROR, "Create sem failed.");
    }
    return semId;
}

int KxRescanLock::lockSem(int semId)
{
    sembuf take = {};
    take.sem_num = LOCK;
    take.sem_op = -1;
    take.sem_flg = SEM_UNDO;
    int result = 0;
    do {
        result = semop(semId, &take, 1);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : -1;
}

int KxRescanLock::unlockSem(int semId)
{
    union {
        int value;
        void* other; // the kernel takes an argument of this size
    } free = {1};
    return semctl(semId, LOCK, SETVAL, free) == -1 ? -1 : 0;
}

int KxRescanLock::InitLock()
{
    const int existing = semget(RESCAN_KEY, SEMAPHORES, IPC_EXCL);
    if (existing >= 1) {
        COMMLOG(OS_LOG_INFO, "Sem exists.SemId:[%d]", existing);
        return 0;
    }
    const int semId = getSem();
    if (semId < 0 || unlockSem(semId) != 0) {
        COMMLOG(OS_LOG_ERROR, "Init Lock failed.");
        return -1;
    }
    COMMLOG(OS_LOG_INFO, "InitLock Succeed.New semId:[%d]", semId);
    return 0;
}

int KxRescanLock::GetLock()
{
    const int semId = getSem();
    if (semId < 0 || lockSem(semId) != 0) {
        COMMLOG(OS_LOG_ERROR, "Lock sem[%d] failed.", semId);
        return -1;
    }
    return 0;
}

int KxRescanLock::ReleaseLock()
{
    const int semId = getSem();
    if (semId < 0 || unlockSem(semId) != 0) {
        COMMLOG(OS_LOG_ERROR, "UnLock sem[%d] failed.", semId);
        return -1;
    }
    return 0;
}
