#ifndef OBSERVER_OBSERVATION_H
#define OBSERVER_OBSERVATION_H

#include "observer/BodyObjects.h"
#include "observer/Kinds.h"
#include "observer/Observers.h"

#include <ovra/threads/NoCancellation.h>
#include <tessel/Access.h>
#include <tessel/Exception.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace ovra::tessel {

/** How much of what fails below it a call is told. */
enum class CallLevel
{
    OPERATION, ///< may not be told of a failure below it
    JOB        ///< reads back what it has done
};

/** What is known of a call that runs. */
struct GatheredCall
{
    OperationEvent event;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    BodyObjects body;
    CallLevel level = CallLevel::OPERATION;
    int failedCode = 0; ///< of what failed last in it
    std::string failedWhat;
    bool isAbsorbed = false; ///< code and what are those of a failure that nobody else is told
};

/**
 * What is gathered of one call while it runs, for the observers; nothing when there is none. The calls of a
 * thread lie within each other. One thread uses it.
 */
class Observation
{
public:
    using Level = CallLevel;

    Observation(const std::string& operation, const CDeviceManager* manager, Level level = Level::OPERATION);
    ~Observation();
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

    /** An object or initiator that the call names, or finds out; an empty ID is none. */
    void names(const char* kind, const std::string& id, const std::string& name = "");
    void names(const StorageObject& object, const HostInitiator& initiator);
    /** A member of a request's body: the table of those that name objects picks what it knows. */
    void sends(std::string_view key, const std::string& text);
    void sends(std::string_view key, unsigned long number);
    /** The object of the body was made. */
    void made(const std::string& id);
    bool isMaking() const;

    /** The session that is being opened. */
    void opens(const std::string& ip, unsigned int port, const std::string& user);
    void setChange();
    void found(const std::string& device);

    /** The call is over; tells it. */
    void ended(int code, const std::string& what = "") noexcept;

    /** What fails in this thread now; absorbed() makes it known of the calls that go on as if it had not. */
    static void fails(int code, const std::string& what);
    static void absorbed();
    /** The jobs that this thread does have found an object out. */
    static void jobsName(const char* kind, const std::string& id);
    /** Seconds that the calls of this thread have waited for the rescan lock. */
    static void waited(double seconds);

    /** The innermost call of this thread that is observed; null: none. */
    static Observation* ofThread();
    /** What is known of it by now. */
    OperationEvent soFar() const;

private:
    void finish(GatheredCall& call);

    std::optional<GatheredCall> m_call; ///< none: nobody listens. Stands here, lest a call take memory for it
    Observation* m_outer = nullptr;
};

/** Fills in when a call begins, and who makes it: now, and this thread. */
void stamp(OperationEvent& event);

double secondsSince(std::chrono::steady_clock::time_point start);

/** What is said of a refusal; the array's own words are not, they may hold anything. */
std::string refusalOf(int code);

/** Does a job, whose end the observers are told. @param steps is called with its Observation. */
template <class Steps>
auto observed(const char* job, const CDeviceManager& manager, const Steps& steps)
{
    const NoCancellation untilTheEnd;
    Observation seen(job, &manager, Observation::Level::JOB);
    try {
        if constexpr (std::is_void_v<decltype(steps(seen))>) {
            steps(seen);
            seen.ended(0);
        } else {
            auto result = steps(seen);
            seen.ended(0);
            return result;
        }
    } catch (const OvraAPIExceptionWithErrCode& refusal) {
        seen.ended(refusal.getErrCode(), refusalOf(refusal.getErrCode()));
        throw;
    } catch (const OvraAPIException& failure) {
        seen.ended(1, failure.what());
        throw;
    }
}

} // namespace ovra::tessel

#endif
