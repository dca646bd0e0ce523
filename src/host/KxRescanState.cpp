#include "host/KxRescanState.h"

#include "host/NeverDestroyed.h"
#include "session/CallsAtWork.h"

std::atomic<int> g_scanState{KX_RESCAN_NEVER};
std::mutex g_scanLunMutex;
// Its destructor would wait for the threads that wait here: exit would not end.
HOST_NEVER_DESTROYED(std::condition_variable, g_scanlunEndCond, "g_scanlunEndCond", ());

void SetScanState(KxRescanState state)
{
    g_scanState = state;
}

int GetScanState()
{
    return g_scanState;
}

namespace ovra::tessel {

void waitForScanEnd()
{
    std::unique_lock<std::mutex> lock(g_scanLunMutex);
    const auto isOver = [] { return GetScanState() == KX_RESCAN_ENDED; };
    if (!isLimited()) {
        g_scanlunEndCond.wait(lock, isOver);
        return;
    }
    while (!g_scanlunEndCond.wait_for(lock, std::chrono::milliseconds(LOOK_MILLISECONDS), isOver) &&
           whyToEnd() == FailureKind::NONE) {
    }
    throwIfEnded();
}

std::unique_lock<std::mutex> RunningScan::end()
{
    m_ended = true;
    SetScanState(KX_RESCAN_ENDED);
    std::unique_lock<std::mutex> lock(g_scanLunMutex);
    g_scanlunEndCond.notify_all();
    return lock;
}

RunningScan::~RunningScan()
{
    if (!m_ended) {
        end();
    }
}

} // namespace ovra::tessel
