#include "session/SessionCall.h"

#include "session/Log.h"

#include <ovra/rest/RestRequest.h>

namespace ovra::tessel {

SessionCall::SessionCall(const Texts& texts)
    : m_texts(texts), m_record(texts.name != nullptr ? texts.name : std::string())
{
    COMMLOG(OS_LOG_INFO, "%s", texts.start);
}

void SessionCall::require(bool holds, const char* line, int result) const
{
    if (!holds) {
        COMMLOG(OS_LOG_ERROR, "%s", line);
        throw Failure{result};
    }
}

void SessionCall::checkAnswer(int sent, RestResponse& response) const
{
    require(sent == 0, m_texts.noAnswer, sent);
    std::string description;
    const int code = response.getResponseCode(description);
    if (code != 0) {
        refuse(description, code);
    }
}

void SessionCall::refuse(const std::string& description, int result) const
{
    COMMLOG(OS_LOG_ERROR, "%s%s", m_texts.errorAnswer, description.c_str());
    throw Failure{result};
}

void SessionCall::record(int result) const
{
    if (m_texts.name != nullptr) {
        m_record.write(result);
    }
}

void SessionCall::unreadable() const
{
    COMMLOG(OS_LOG_ERROR, "%s", m_texts.noAnswer);
    record(REST_ANSWER_UNREADABLE);
}

} // namespace ovra::tessel
