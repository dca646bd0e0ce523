#include "session/Operation.h"

#include "session/CallsAtWork.h"
#include "session/DeviceManagerImpl.h"
#include "session/RestAdditions.h"

#include <cxxabi.h>

namespace ovra::tessel {

namespace {

// The result code of the innermost failure on this thread: OvraAPIException carries none, and the operations
// that it passes through write the same code into their records.
thread_local int t_failure = RESULT_SUCCESS;

/** Says that a call begins and takes its start time, in the order that its frame gives. */
InterfaceRecord enter(const Frame& frame)
{
    std::optional<InterfaceRecord> record;
    if (frame.timeFirst) {
        record.emplace(frame.record);
    }
    COMMLOG(OS_LOG_INFO, "%s", frame.enter.c_str());
    return record ? *record : InterfaceRecord(frame.record);
}

/** What is kept of the records of a list: one member of each, or with null everything. */
class Keeping
{
public:
    explicit Keeping(const char* member) : m_before(set(member)) {}
    ~Keeping() { set(m_before); }
    Keeping(const Keeping&) = delete;
    Keeping& operator=(const Keeping&) = delete;

private:
    static const char* set(const char* member)
    {
        return RestKeepMember != nullptr ? RestKeepMember(member) : nullptr;
    }

    const char* const m_before;
};

} // namespace

Operation::Operation(const Frame& frame, CDeviceManagerImpl* deviceManager)
    : m_options(deviceManager), m_frame(frame), m_deviceManager(deviceManager), m_record(enter(frame)),
      m_seen(frame.observed, deviceManager)
{
    t_failure = RESULT_SUCCESS;
}

RestRequest& Operation::request()
{
    if (!m_request) {
        m_request.emplace();
    }
    return *m_request;
}

void Operation::addIfSet(const char* key, const std::string& value)
{
    if (!value.empty()) {
        add(key, value);
    }
}

void Operation::addMember(const std::string& groupId, MOType type, const std::string& id)
{
    add("ID", groupId);
    add("ASSOCIATEOBJTYPE", int{type});
    add("ASSOCIATEOBJID", id);
}

OvraAPIException Operation::failure(int result, const std::string& message) const
{
    COMMLOG(OS_LOG_ERROR, "%s", message.c_str());
    t_failure = result;
    noteResult(result, m_frame.name(), message);
    Observation::fails(result, message);
    return OvraAPIException(message);
}

void Operation::require(bool holds, const char* text, FailureKind kind)
{
    if (!holds) {
        const OvraAPIException refused = failure(RESULT_BAD_ARGUMENT, text + m_frame.errors);
        noteKind(kind);
        throw refused;
    }
}

void Operation::requireId(const std::string& id, const IdArgument& argument)
{
    m_seen.names(argument.kind, id);
    require(!id.empty(), argument.textIfEmpty);
    require(id != "." && id != "..", "The ID is . or .., which no object has! ");
}

void Operation::requireOneCondition(const std::string& value)
{
    require(!addsCondition(value), "A filter value holds a condition of its own, which cannot be sent! ");
}

void Operation::requireReadable(bool holds)
{
    if (!holds) {
        throw failure(REST_ANSWER_UNREADABLE, m_frame.unanswered());
    }
}

void Operation::refuse(const std::string& description, int result, FailureKind kind)
{
    const OvraAPIException refused = failure(result, m_frame.refusal(result, description));
    noteKind(kind);
    throw refused;
}

void Operation::expect(bool holds, const char* text)
{
    if (!holds) {
        COMMLOG(OS_LOG_ERROR, "%s%s", text, m_frame.errors.c_str());
        record(RESULT_BAD_ARGUMENT);
    }
}

void Operation::close(int result)
{
    record(result);
    m_closed = true;
    m_closedWith = result;
}

void Operation::close(const char* text, int result)
{
    COMMLOG(OS_LOG_ERROR, "%s%s", text, m_frame.errors.c_str());
    notedFailure(FailureKind::ARGUMENT, text + m_frame.errors);
    keepFailure();
    m_closedBecause = text + m_frame.errors;
    close(result);
}

void Operation::keep(const std::string& reason, bool canTryAgain)
{
    const FailureKind why = whyToEnd();
    notedFailure(why != FailureKind::NONE ? why : FailureKind::HOST, reason + " " + m_frame.errors,
                 canTryAgain);
    keepFailure();
    m_closedBecause = reason;
}

bool Operation::closeUnless(bool holds, const char* text)
{
    if (!holds) {
        close(text, RESULT_BAD_ARGUMENT);
    }
    return !holds;
}

Answer Operation::send(REST_REQUEST_MODE_E mode, const std::string& url, const char* keptMember)
{
    const auto exchange = [&] {
        const Keeping keeping(keptMember);
        return CDeviceManagerImpl::send(m_deviceManager, request(), mode, url);
    };
    if (mode != REST_GET) {
        m_seen.setChange();
    }
    Answer answer = exchange();
    if (m_deviceManager != nullptr && m_deviceManager->opensAgain(answer) && mode == REST_GET) {
        answer = exchange();
    }
    answer = checked(std::move(answer));
    if (mode == REST_POST && m_seen.isMaking()) {
        m_seen.made(answer.id());
    }
    return answer;
}

Answer Operation::checked(Answer answer)
{
    if (answer.reason() != 0) {
        throw failure(answer.reason(), m_frame.unanswered());
    }
    std::string description;
    const int code = answer.code(description);
    if (code != 0) {
        const std::string message = m_frame.refusal(code, description);
        COMMLOG(OS_LOG_ERROR, "%s", message.c_str());
        noteRefusal(code, description, m_frame.name(), message);
        Observation::fails(code, refusalOf(code));
        throw OvraAPIExceptionWithErrCode(code, message);
    }
    return answer;
}

void Operation::record(int result) const
{
    if (!m_frame.record.empty()) {
        m_record.write(result);
    }
}

void Operation::tellEnd(int result, const std::string& what)
{
    const int failure = t_failure; // an observer may call operations too
    if (result == RESULT_SUCCESS) {
        m_seen.ended(result, what);
    } else {
        asideOfFailure([&] { m_seen.ended(result, what); });
    }
    t_failure = failure;
}

void Operation::succeeded()
{
    if (m_closed) {
        tellEnd(m_closedWith, m_closedBecause);
        return;
    }
    if (!m_frame.recordLast) {
        record(RESULT_SUCCESS);
    }
    if (!m_frame.leave.empty()) {
        COMMLOG(OS_LOG_INFO, "%s", m_frame.leave.c_str());
    }
    if (m_frame.recordLast) {
        record(RESULT_SUCCESS);
    }
    tellEnd(RESULT_SUCCESS, m_closedBecause);
}

void Operation::failed()
{
    try {
        throw;
    } catch (const OvraAPIExceptionWithErrCode& e) {
        record(e.getErrCode());
        tellEnd(e.getErrCode(), refusalOf(e.getErrCode()));
        throw;
    } catch (const OvraAPIException& e) {
        const int result = t_failure != RESULT_SUCCESS ? t_failure : RESULT_BAD_ARGUMENT;
        record(result);
        tellEnd(result, e.what());
        throw;
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is being cancelled: nothing may stop that
    } catch (...) {
        // The answer has a field of a type that it cannot be read as, or the host is out of memory.
        const OvraAPIException unreadable = failure(REST_ANSWER_UNREADABLE, m_frame.unanswered());
        record(REST_ANSWER_UNREADABLE);
        tellEnd(REST_ANSWER_UNREADABLE, unreadable.what());
        throw unreadable;
    }
}

} // namespace ovra::tessel
