#ifndef SESSION_OPERATION_H
#define SESSION_OPERATION_H

#include "observer/Observation.h"
#include "session/Answer.h"
#include "session/Frame.h"
#include "session/InterfaceRecord.h"
#include "session/LastFailure.h"
#include "session/Log.h"
#include "session/ManagerOptions.h"
#include "session/Url.h"

#include <ovra/rest/RestRequest.h>
#include <ovra/threads/NoCancellation.h>
#include <tessel/Exception.h>

#include <optional>
#include <string>
#include <type_traits>

class CDeviceManagerImpl;

namespace ovra::tessel {

/**
 * One call of a public operation: the enter line, the checks, the request, the interface record on every way
 * out, the leave line. Only OvraAPIException and OvraAPIExceptionWithErrCode leave run().
 */
class Operation
{
public:
    template <class Body>
    static auto run(const Frame& frame, CDeviceManagerImpl* deviceManager, Body&& body)
    {
        const NoCancellation whole; // a thread that is cancelled meanwhile ends behind the operation
        Operation op(frame, deviceManager);
        try {
            if constexpr (std::is_void_v<decltype(body(op))>) {
                body(op);
                op.succeeded();
            } else {
                auto result = body(op);
                op.succeeded();
                return result;
            }
        } catch (...) {
            op.failed();
        }
    }

    /** As run, for calls that tell of a failure by their result alone. @param makeFrame may run out of memory
     * too. */
    template <class Body>
    static bool succeeds(Frame (*makeFrame)(), CDeviceManagerImpl* deviceManager, Body&& body)
    {
        try {
            run(makeFrame(), deviceManager, body);
            return true;
        } catch (const OvraAPIException&) {
            return false;
        } catch (const std::exception&) {
            noteLackOfMemory();
            return false;
        }
    }

    /** Ends the operation with the text and its name unless the condition holds; texts end in a blank. */
    void require(bool holds, const char* text, FailureKind kind = FailureKind::ARGUMENT);
    /** The same for an ID, which is not empty, nor "." or "..": a server takes these for another path. */
    void requireId(const std::string& id, const IdArgument& argument);
    /** As require, but only says so, with a record of its own: docs/oddities.md#two-records */
    void expect(bool holds, const char* text);
    /** Ends the operation as one that got no answer unless the answer holds what it must. */
    void requireReadable(bool holds);
    /** Ends the operation as one that the array refused, with a description and a result of our own. */
    [[noreturn]] void refuse(const std::string& description, int result, FailureKind kind);

    /** Writes the record now; the operation goes on, without a leave line. */
    void close(int result);
    /** Says why, as an error, and closes. */
    void close(const char* text, int result);
    /** The call returns, and its caller is to know why it has nothing: a failure of this host. */
    void keep(const std::string& reason, bool canTryAgain = false);
    /** Says why and closes as an argument error unless the condition holds; true when it did. */
    bool closeUnless(bool holds, const char* text);

    /** Adds a member to the request's body; the order of the calls is the order on the wire. */
    template <class T>
    void add(const char* key, const T& value)
    {
        if constexpr (std::is_same_v<T, std::string>) {
            m_seen.sends(key, value);
        } else {
            m_seen.sends(key, static_cast<unsigned long>(value));
        }
        request().BodyAddProperty(key, value);
    }
    void add(const char* key, const char* value) { add(key, std::string(value)); }
    void addIfSet(const char* key, const std::string& value);
    /** The body that puts an object into a group. */
    void addMember(const std::string& groupId, MOType type, const std::string& id);

    Answer get(const std::string& url) { return send(REST_GET, url); }
    /** As get; of a list as long as it may be the IDs are kept alone. */
    Answer getIds(const std::string& url) { return send(REST_GET, url, "ID"); }
    Answer post(const std::string& url) { return send(REST_POST, url); }
    Answer put(const std::string& url) { return send(REST_PUT, url); }
    Answer del(const std::string& url) { return send(REST_DELETE, url); }

    /** The answer, when it is one and tells no error; else the operation ends. */
    Answer checked(Answer answer);

    /** The filter of a list, whose values must not add a condition: the grammar knows no quoting. */
    template <class Record>
    std::string filter(const Record& record)
    {
        const std::string conditions =
            filterOf(record, [this](const std::string& value) { requireOneCondition(value); });
        return conditions.empty() ? conditions : "filter=" + conditions + "&";
    }

    RestRequest& request();
    const std::string& name() const { return m_frame.errors; }

    /** What the observers are told of the call, beside what its IDs and its body say. */
    void names(const char* kind, const std::string& id) { m_seen.names(kind, id); }
    Observation& seen() { return m_seen; }

private:
    Operation(const Frame& frame, CDeviceManagerImpl* deviceManager);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    Answer send(REST_REQUEST_MODE_E mode, const std::string& url, const char* keptMember = nullptr);
    void requireOneCondition(const std::string& value);
    /** Says what ended the operation; for the caller to throw. */
    OvraAPIException failure(int result, const std::string& message) const;
    void record(int result) const;
    void tellEnd(int result, const std::string& what = "");
    void succeeded();
    [[noreturn]] void failed();

    const Call m_call;
    const OptionsInForce m_options;
    const Frame& m_frame;
    CDeviceManagerImpl* m_deviceManager;
    InterfaceRecord m_record;
    Observation m_seen;
    std::optional<RestRequest> m_request;
    bool m_closed = false;
    int m_closedWith = RESULT_SUCCESS;
    std::string m_closedBecause;
};

} // namespace ovra::tessel

#endif
