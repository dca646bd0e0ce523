#include "session/Operation.h"

#include "session/DeviceManagerImpl.h"

#include <cxxabi.h>

namespace ovra::tessel {

namespace {

// The result code of the innermost failure on this thread: OvraAPIException carries none, and the operations
// that it passes through write the same code into their records.
thread_local int t_failure = RESULT_SUCCESS;

const char* const NO_ANSWER = "url error or internet error ";

} // namespace

Frame Frame::loggedAs(const char* name) const
{
    Frame frame(*this);
    frame.logged = name;
    return frame;
}

Frame Frame::errorsAs(const std::string& name) const
{
    Frame frame(*this);
    frame.errors = name;
    return frame;
}

Frame Frame::closingAsEntered() const
{
    Frame frame(*this);
    frame.close = "enter ";
    return frame;
}

Frame Frame::recordedLast() const
{
    Frame frame(*this);
    frame.recordLast = true;
    return frame;
}

Answer::Answer(Operation& op, REST_REQUEST_MODE_E mode, const std::string& url)
{
    op.exchange(mode, url, m_response);
}

std::string Answer::id(unsigned long index)
{
    return index < count() ? m_response[index]["ID"].asString() : std::string();
}

Operation::Operation(const Frame& frame, CDeviceManagerImpl* deviceManager)
    : m_frame(frame), m_deviceManager(deviceManager), m_record(frame.record)
{
    t_failure = RESULT_SUCCESS;
    COMMLOG(OS_LOG_INFO, "enter %s successfully!", frame.logged.c_str());
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

OvraAPIException Operation::failure(int result, const std::string& message)
{
    COMMLOG(OS_LOG_ERROR, "%s", message.c_str());
    t_failure = result;
    return OvraAPIException(message);
}

void Operation::fail(int result, const std::string& message)
{
    throw failure(result, message);
}

void Operation::require(bool holds, const char* text)
{
    if (!holds) {
        fail(RESULT_BAD_ARGUMENT, text + m_frame.errors);
    }
}

void Operation::requireReadable(bool holds)
{
    if (!holds) {
        fail(REST_ANSWER_UNREADABLE, NO_ANSWER + m_frame.errors);
    }
}

void Operation::expect(bool holds, const char* text)
{
    if (!holds) {
        COMMLOG(OS_LOG_ERROR, "%s%s", text, m_frame.errors.c_str());
        m_record.write(RESULT_BAD_ARGUMENT);
    }
}

void Operation::stop(const char* text, int result)
{
    COMMLOG(OS_LOG_ERROR, "%s%s", text, m_frame.errors.c_str());
    end(result);
}

void Operation::end(int result)
{
    m_record.write(result);
    m_stopped = true;
}

void Operation::exchange(REST_REQUEST_MODE_E mode, const std::string& url, RestResponse& response)
{
    std::vector<std::string> headers;
    const bool refused = m_deviceManager != nullptr && m_deviceManager->isRefused();
    const int sent = refused ? REST_NO_SESSION
                             : request().SendRequest(CDeviceManagerImpl::sessionKey(m_deviceManager), url,
                                                     mode, response, headers, true);
    if (sent != 0) {
        fail(sent, NO_ANSWER + m_frame.errors);
    }
    std::string description;
    const int code = response.getResponseCode(description);
    if (code != 0) {
        const std::string message = "get error response, error code:" + std::to_string(code) +
                                    ", description:" + description + " " + m_frame.errors;
        COMMLOG(OS_LOG_ERROR, "%s", message.c_str());
        throw OvraAPIExceptionWithErrCode(code, message);
    }
}

void Operation::succeeded()
{
    if (m_stopped) {
        return;
    }
    if (!m_frame.recordLast) {
        m_record.write(RESULT_SUCCESS);
    }
    COMMLOG(OS_LOG_INFO, "%s%s successfully!", m_frame.close, m_frame.logged.c_str());
    if (m_frame.recordLast) {
        m_record.write(RESULT_SUCCESS);
    }
}

void Operation::failed()
{
    try {
        throw;
    } catch (const OvraAPIExceptionWithErrCode& e) {
        m_record.write(e.getErrCode());
        throw;
    } catch (const OvraAPIException&) {
        m_record.write(t_failure != RESULT_SUCCESS ? t_failure : RESULT_BAD_ARGUMENT);
        throw;
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is being cancelled: nothing may stop that
    } catch (...) {
        // The answer has a field of a type that it cannot be read as, or the host is out of memory.
        const OvraAPIException unreadable = failure(REST_ANSWER_UNREADABLE, NO_ANSWER + m_frame.errors);
        m_record.write(REST_ANSWER_UNREADABLE);
        throw unreadable;
    }
}

} // namespace ovra::tessel
