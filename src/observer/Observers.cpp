#include "observer/Observers.h"

#include "observer/ProductTag.h"

#include <ovra/log/LogAPI.h>

#include <algorithm>
#include <atomic>
#include <cxxabi.h>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <pthread.h>
#include <unistd.h>
#include <utility>
#include <variant>

namespace ovra::tessel {
namespace {

using Listeners = std::vector<std::shared_ptr<Observer>>;

/** Never destroyed: threads may still call when the process ends. */
struct Registry
{
    std::mutex mutex; ///< guards what follows; held for a copy alone
    std::shared_ptr<const Listeners> listeners = std::make_shared<Listeners>();
    std::map<const CDeviceManager*, sessions::Session> sessions;
};

Registry& registry()
{
    static Registry* const instance = new Registry;
    return *instance;
}

/// A child that is forked meanwhile finds the mutex free.
[[maybe_unused]] const int registered = pthread_atfork(
    [] { registry().mutex.lock(); }, [] { registry().mutex.unlock(); }, [] { registry().mutex.unlock(); });

std::atomic<bool> g_isObserved{false};

thread_local bool t_isTelling = false; ///< an observer is at work: its own calls are not told
// No object with a destructor: where there is no memory to note that, the C library ends the process.
using Waiting = std::vector<std::variant<OperationEvent, HostEvent>>;
thread_local unsigned t_untold = 0;
thread_local Waiting* t_waiting = nullptr; ///< made for the first that waits

std::shared_ptr<const Listeners> listeners()
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    return registry().listeners;
}

template <class Change>
void changeListeners(const Change& change)
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    auto changed = std::make_shared<Listeners>(*registry().listeners);
    change(*changed);
    g_isObserved = !changed->empty();
    registry().listeners = std::move(changed);
}

void call(Observer& observer, const OperationEvent& event)
{
    observer.operationEnded(event);
}

void call(Observer& observer, const HostEvent& event)
{
    observer.hostStep(event);
}

template <class Event>
void tellAll(const Event& event)
{
    struct Telling
    {
        Telling() { t_isTelling = true; }
        ~Telling() { t_isTelling = false; }
    } const telling;
    const std::shared_ptr<const Listeners> all = listeners(); // whoever adds and removes meanwhile
    for (const std::shared_ptr<Observer>& observer : *all) {
        try {
            call(*observer, event);
        } catch (const abi::__forced_unwind&) {
            throw; // the thread is being cancelled: nothing may stop that
        } catch (...) {
            Log_Run_Warn(PRODUCT_TAG, "An observer has thrown an exception: it is dropped.");
        }
    }
}

template <class Event>
void tellOrWait(const Event& event)
{
    if (t_isTelling) {
        return;
    }
    try {
        if (t_untold != 0) {
            t_waiting = t_waiting != nullptr ? t_waiting : new Waiting;
            t_waiting->emplace_back(event);
        } else {
            tellAll(event);
        }
    } catch (const std::bad_alloc&) {
        Log_Run_Warn(PRODUCT_TAG, "Out of memory: an observer was not told of a call.");
    }
}

int processOf(const OperationEvent& event)
{
    return event.process;
}

int processOf(const HostEvent& event)
{
    return event.operation.process;
}

} // namespace

Observer::~Observer() = default;
void Observer::operationEnded(const OperationEvent&) {}
void Observer::hostStep(const HostEvent&) {}

void addObserver(const std::shared_ptr<Observer>& observer)
{
    changeListeners([&](Listeners& all) {
        if (observer && std::find(all.begin(), all.end(), observer) == all.end()) {
            all.push_back(observer);
        }
    });
}

void removeObserver(const std::shared_ptr<Observer>& observer)
{
    changeListeners(
        [&](Listeners& all) { all.erase(std::remove(all.begin(), all.end(), observer), all.end()); });
}

const char* nameOf(HostEvent::Step step)
{
    static constexpr const char* NAMES[] = {"scanned", "found", "renewed", "removed", "refused"};
    return step <= HostEvent::REFUSED ? NAMES[step] : "";
}

bool isObserved()
{
    return g_isObserved.load(std::memory_order_relaxed);
}

void tell(const OperationEvent& event)
{
    tellOrWait(event);
}

void tell(const HostEvent& event)
{
    tellOrWait(event);
}

void beginUntold()
{
    ++t_untold;
}

void endUntold()
{
    if (--t_untold != 0 || t_waiting == nullptr) {
        return;
    }
    const std::unique_ptr<Waiting> waiting(std::exchange(t_waiting, nullptr));
    for (const auto& event : *waiting) {
        std::visit(
            [](const auto& one) {
                if (processOf(one) == getpid()) { // a child has a copy of what its parent will tell
                    tell(one);
                }
            },
            event);
    }
}

Untold::Untold()
{
    beginUntold();
}

Untold::~Untold()
{
    endUntold();
}

sessions::Session sessions::named(const std::string& ip, unsigned int port, const std::string& user)
{
    const bool isIpv6 = ip.find(':') != std::string::npos && ip.front() != '[';
    return {(isIpv6 ? "[" + ip + "]" : ip) + ":" + std::to_string(port), user};
}

void sessions::set(const CDeviceManager* manager, Session session)
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    registry().sessions[manager] = std::move(session);
}

sessions::Session sessions::of(const CDeviceManager* manager)
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    const auto found = registry().sessions.find(manager);
    return found == registry().sessions.end() ? Session() : found->second;
}

void sessions::forget(const CDeviceManager* manager)
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    registry().sessions.erase(manager);
}

} // namespace ovra::tessel
