#ifndef HOST_KXRESCANSTATE_H
#define HOST_KXRESCANSTATE_H

#include <atomic>
#include <condition_variable>
#include <mutex>

/** How far the snapshot scans of this process are. */
enum KxRescanState : int
{
    KX_RESCAN_NEVER = 0, ///< none has started
    KX_RESCAN_RUNNING = 1,
    KX_RESCAN_ENDED = 2 ///< the last one has rescanned the host
};

extern std::atomic<int> g_scanState;
extern std::mutex g_scanLunMutex;
extern std::condition_variable g_scanlunEndCond; ///< the scan state has become 2; used with g_scanLunMutex

void SetScanState(KxRescanState state);
int GetScanState();

namespace ovra::tessel {

/** Waits until no snapshot scan of this process is rescanning. */
void waitForScanEnd();

/** A rescan that other snapshot scans wait for, until end() or the way out of the scope. */
class RunningScan
{
public:
    RunningScan() { SetScanState(KX_RESCAN_RUNNING); }
    ~RunningScan();
    RunningScan(const RunningScan&) = delete;
    RunningScan& operator=(const RunningScan&) = delete;

    /** Wakes those who wait; they go on only when the returned lock is given up. */
    std::unique_lock<std::mutex> end();

private:
    bool m_ended = false;
};

} // namespace ovra::tessel

#endif
