#ifndef SESSION_OPERATION_H
#define SESSION_OPERATION_H

#include "session/FieldTable.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"
#include "session/Retry.h"

#include <ovra/rest/RestRequest.h>
#include <ovra/threads/NoCancellation.h>
#include <tessel/Exception.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <vector>

class CDeviceManagerImpl;

namespace ovra::tessel {

class Operation;

/** Under which names an operation shows itself; for most of them all are the same. */
class Frame
{
public:
    Frame(const char* operation) : Frame(std::string(operation)) {}
    explicit Frame(const std::string& operation) : record(operation), logged(operation), errors(operation) {}

    /** Names the operation otherwise in its enter and leave lines. */
    Frame loggedAs(const char* name) const;
    /** Names the operation otherwise behind its messages. */
    Frame errorsAs(const std::string& name) const;
    /** Closes with the enter text once more in place of the leave text. */
    Frame closingAsEntered() const;
    /** Writes the interface record behind the leave line in place of before it. */
    Frame recordedLast() const;

    std::string record;
    std::string logged;
    std::string errors;
    const char* close = "leave ";
    bool recordLast = false;
};

/** What the array answered to a request that succeeded. */
class Answer
{
public:
    Answer(Operation& op, REST_REQUEST_MODE_E mode, const std::string& url);

    unsigned long count() { return m_response.count(); }
    Json::Value& operator[](unsigned long index) { return m_response[index]; }

    bool hasObject(unsigned long index = 0) { return index < count() && m_response[index].isMember("ID"); }
    /** The ID of a record; empty without one. */
    std::string id(unsigned long index = 0);

    /** Record 0, or the defaults when there is none, or none with an ID. */
    template <class Record>
    Record read()
    {
        return hasObject() ? readRecord<Record>(m_response[0]) : Record();
    }

    /** Record 0 with or without an ID, or the defaults when there is none. */
    template <class Record>
    Record readAny()
    {
        return count() != 0 ? readRecord<Record>(m_response[0]) : Record();
    }

    /** Reads every object in full by its ID, in the array's order; records without an ID are skipped. */
    template <class Read>
    auto readEach(Read readObject)
    {
        std::vector<decltype(readObject(std::string()))> objects;
        for (unsigned long i = 0; i < count(); ++i) {
            if (hasObject(i)) {
                objects.push_back(readObject(id(i)));
            }
        }
        return objects;
    }

private:
    RestResponse m_response;
};

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

    /** Ends the operation as an argument error unless the condition holds; text ends in a blank, the name
     * follows. */
    void require(bool holds, const char* text);
    /** As require, but only says so, with a record of its own: the operation goes on. */
    void expect(bool holds, const char* text);
    /** Ends the operation as one that got no answer unless the answer holds what it must. */
    void requireReadable(bool holds);
    /** Ends the operation without an exception: the error line, the record with result, no leave line. */
    void stop(const char* text, int result);
    /** As require, but ends the operation without an exception; true when it did. */
    bool refused(bool holds, const char* text)
    {
        if (!holds) {
            stop(text, RESULT_BAD_ARGUMENT);
        }
        return !holds;
    }
    /** Ends the operation as stop does, without a line: the caller has said or will say why. */
    void end(int result);

    /** Adds a member to the request's body; the order of the calls is the order on the wire. */
    template <class T>
    void add(const char* key, const T& value)
    {
        request().BodyAddProperty(key, value);
    }
    void add(const char* key, const char* value) { add(key, std::string(value)); }
    void addIfSet(const char* key, const std::string& value);

    Answer get(const std::string& url) { return Answer(*this, REST_GET, url); }
    Answer post(const std::string& url) { return Answer(*this, REST_POST, url); }
    Answer put(const std::string& url) { return Answer(*this, REST_PUT, url); }
    Answer del(const std::string& url) { return Answer(*this, REST_DELETE, url); }

    const std::string& name() const { return m_frame.errors; }

private:
    friend class Answer;

    Operation(const Frame& frame, CDeviceManagerImpl* deviceManager);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    RestRequest& request();
    void exchange(REST_REQUEST_MODE_E mode, const std::string& url, RestResponse& response);
    /** Says what ended the operation; for the caller to throw. */
    static OvraAPIException failure(int result, const std::string& message);
    [[noreturn]] static void fail(int result, const std::string& message);
    void succeeded();
    [[noreturn]] void failed();

    const Frame& m_frame;
    CDeviceManagerImpl* m_deviceManager;
    InterfaceRecord m_record;
    std::optional<RestRequest> m_request;
    bool m_stopped = false;
};

/**
 * Calls until it succeeds, at most gRetryTimes times more, as long as the array answers with one of the
 * codes. Any other error of the array, or the last of these, ends it quietly: the operation before it did
 * succeed.
 */
template <class Call>
auto retryWhile(std::initializer_list<int> codes, const char* retryLine, Call call) -> decltype(call())
{
    for (unsigned int left = gRetryTimes;; --left) {
        try {
            return call();
        } catch (const OvraAPIExceptionWithErrCode& e) {
            bool again = false;
            for (const int code : codes) {
                again = again || e.getErrCode() == code;
            }
            if (!again || left == 0) {
                return decltype(call())();
            }
        }
        COMMLOG(OS_LOG_INFO, "%s", retryLine);
        usleep(gRetrySleepTimeMicroSeconds);
    }
}

} // namespace ovra::tessel

#endif
