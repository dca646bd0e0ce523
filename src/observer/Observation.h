#ifndef OBSERVER_OBSERVATION_H
#define OBSERVER_OBSERVATION_H

#include "observer/Observers.h"

#include <ovra/threads/NoCancellation.h>
#include <tessel/Access.h>
#include <tessel/Exception.h>

#include <cxxabi.h>
#include <memory>
#include <string>
#include <string_view>

namespace ovra::tessel {

/** An ID among the arguments of an operation: what it is the ID of, and what is said when it is empty. */
struct IdArgument
{
    const char* kind; ///< as ObservedObject::kind, or INITIATOR
    const char* textIfEmpty;
};

/** Kinds of what IDs are of. */
namespace kinds {

constexpr const char* LUN = "lun";
constexpr const char* SNAPSHOT = "snapshot";
constexpr const char* LUNGROUP = "lungroup";
constexpr const char* HOST = "host";
constexpr const char* HOSTGROUP = "hostgroup";
constexpr const char* MAPPINGVIEW = "mappingview";
constexpr const char* STORAGEPOOL = "storagepool";
constexpr const char* FCPORT = "fcport";
constexpr const char* FCOEPORT = "fcoeport";
constexpr const char* ETHPORT = "ethport";
constexpr const char* HANDLER = "handler";
constexpr const char* INITIATOR = "initiator"; ///< stands in a member of its own

/** The kind of an object type; "object" for one that is not known. */
const char* of(unsigned long type);

} // namespace kinds

/**
 * What is gathered of one call while it runs, for the observers; nothing when there is none. The calls of a
 * thread lie within each other. One thread uses it.
 */
class Observation
{
public:
    enum class Level
    {
        OPERATION, ///< may not be told of a failure below it
        JOB        ///< reads back what it has done
    };

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

private:
    struct Gathered;
    friend void tellStep(HostEvent::Step, const std::string&, const std::string&, double);

    void finish(Gathered& call);

    std::unique_ptr<Gathered> m_call; ///< null: nobody listens
    Observation* m_outer = nullptr;
};

/** A step on the disks of this host, within the call that the thread is in. */
void tellStep(HostEvent::Step step, const std::string& device, const std::string& what = "",
              double seconds = 0);

/** Tells of a scan when it goes out of scope. */
class TimedScan
{
public:
    explicit TimedScan(std::string what) : m_what(std::move(what)) {}
    ~TimedScan();
    TimedScan(const TimedScan&) = delete;
    TimedScan& operator=(const TimedScan&) = delete;

private:
    const std::string m_what;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/** Adds the time until it goes out of scope to what the thread's calls have waited for the rescan lock. */
class TimedWait
{
public:
    TimedWait() = default;
    ~TimedWait();
    TimedWait(const TimedWait&) = delete;
    TimedWait& operator=(const TimedWait&) = delete;

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

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
