#include "host/Limited.h"

#include "session/CallsAtWork.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace ovra::tessel {
namespace {

constexpr size_t AT_ONCE = 8;
constexpr std::chrono::milliseconds STALL(100); ///< nothing has ended for so long: what is begun hangs

/** While one lives, threads that are started take no signals: those are the program's. */
class NoSignals
{
public:
    NoSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &m_before);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t m_before = {};
};

/** What the waiting thread and the working ones share; the last of them gives it up. */
struct Shared
{
    std::mutex mutex;
    std::condition_variable changed;
    std::atomic<size_t> next{0};
    size_t ended = 0;
    std::atomic<bool> isGivenUp{false};
    std::exception_ptr error;
    std::vector<std::function<void()>> steps;

    bool isDone() const { return ended == steps.size(); }
    size_t waiting() const { return steps.size() - std::min(next.load(), steps.size()); } ///< for a thread
};

/** Afterwards nobody waits any more: what is not begun is left. */
class GivenUp
{
public:
    explicit GivenUp(Shared& shared) : m_shared(shared) {}
    ~GivenUp() { m_shared.isGivenUp = true; }
    GivenUp(const GivenUp&) = delete;
    GivenUp& operator=(const GivenUp&) = delete;

private:
    Shared& m_shared;
};

void work(const std::shared_ptr<Shared>& shared)
{
    for (size_t index = shared->next++; index < shared->steps.size() && !shared->isGivenUp;
         index = shared->next++) {
        std::exception_ptr error;
        try {
            shared->steps[index]();
        } catch (...) {
            error = std::current_exception();
        }
        const std::lock_guard<std::mutex> guard(shared->mutex);
        if (error) {
            shared->error = std::move(error);
        }
        ++shared->ended;
        shared->changed.notify_all();
    }
}

/** Starts a few more threads, where there is work for them. */
void startSome(const std::shared_ptr<Shared>& shared)
{
    const NoSignals none;
    for (size_t more = std::min(AT_ONCE, shared->waiting()); more != 0; --more) {
        std::thread(work, shared).detach();
    }
}

bool doAll(std::chrono::seconds limit, std::vector<std::function<void()>> steps)
{
    using Clock = std::chrono::steady_clock;
    const auto shared = std::make_shared<Shared>();
    shared->steps = std::move(steps);
    const Clock::time_point end = Clock::now() + limit;
    const auto look = isLimited() ? Clock::duration(std::chrono::milliseconds(LOOK_MILLISECONDS)) : limit;
    throwIfEnded();
    std::unique_lock<std::mutex> lock(shared->mutex);
    const GivenUp afterwards(*shared);
    startSome(shared);
    Clock::time_point progress = Clock::now();
    for (auto now = progress; !shared->isDone() && now < end; now = Clock::now()) {
        const size_t before = shared->ended;
        const Clock::time_point stall = shared->waiting() == 0 ? end : progress + STALL;
        shared->changed.wait_until(lock, std::min({end, stall, now + look}),
                                   [&] { return shared->ended != before; });
        throwIfEnded();
        if (shared->ended != before) {
            progress = Clock::now();
        } else if (Clock::now() >= stall) { // they hang: others take their place
            startSome(shared);
            progress = Clock::now();
        }
    }
    if (const std::exception_ptr error = std::exchange(shared->error, nullptr)) { // no thread has it any more
        std::rethrow_exception(error);
    }
    return shared->isDone();
}

} // namespace

bool endsWithin(std::chrono::seconds limit, const std::function<void()>& step)
{
    return doAll(limit, {step});
}

void doWithin(std::chrono::seconds limit, const std::vector<std::function<void()>>& steps)
{
    doAll(limit, steps);
}

} // namespace ovra::tessel
