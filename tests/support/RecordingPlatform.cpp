#include "support/RecordingPlatform.h"

#include <json/reader.h>

#include <sstream>
#include <stdexcept>

std::string SentRequest::text() const
{
    static const char* const METHODS[] = {"GET", "POST", "PUT", "DELETE"};
    std::string line = std::string(METHODS[mode]) + " " + path;
    for (const auto& member : body) {
        line += " " + member.first + "=" + member.second;
    }
    return line;
}

Reply Reply::ok(std::vector<Json::Value> records)
{
    Reply reply;
    reply.records = std::move(records);
    return reply;
}

static Json::Value parse(const std::string& text)
{
    Json::Value value;
    std::istringstream stream(text);
    std::string errors;
    if (!Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) {
        throw std::invalid_argument(errors);
    }
    return value;
}

Reply Reply::object(const std::string& json)
{
    return ok({parse(json)});
}

Reply Reply::list(const std::string& json)
{
    Reply reply;
    for (const Json::Value& element : parse(json)) {
        reply.records.push_back(element);
    }
    return reply;
}

Reply Reply::error(int code, const std::string& description)
{
    Reply reply;
    reply.code = code;
    reply.description = description;
    return reply;
}

Reply Reply::noAnswer(int sent)
{
    Reply reply;
    reply.sent = sent;
    return reply;
}

RecordingPlatform& RecordingPlatform::get()
{
    static RecordingPlatform* const instance =
        new RecordingPlatform; // outlives every static object that logs
    return *instance;
}

void RecordingPlatform::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_journal.clear();
    m_script.clear();
    m_answer = nullptr;
    m_requests.clear();
    m_records.clear();
    m_tags.clear();
    acceptUsers = true;
    ipValid = true;
    logInitResult = 0;
    logFiniResult = 0;
}

void RecordingPlatform::reply(Reply reply)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_script.push_back(std::move(reply));
}

void RecordingPlatform::replyWith(std::function<Reply(const SentRequest&)> answer)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_answer = std::move(answer);
}

std::vector<std::string> RecordingPlatform::journal() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_journal;
}

std::vector<std::string> RecordingPlatform::lines(const std::string& prefix) const
{
    std::vector<std::string> found;
    for (const std::string& line : journal()) {
        if (line.compare(0, prefix.size(), prefix) == 0) {
            found.push_back(line);
        }
    }
    return found;
}

std::vector<SentRequest> RecordingPlatform::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

std::vector<std::vector<std::string>> RecordingPlatform::interfaceRecords() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_records;
}

std::vector<std::string> RecordingPlatform::tags() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_tags;
}

void RecordingPlatform::note(const std::string& line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_journal.push_back(line);
}

void RecordingPlatform::record(bool error, std::vector<std::string> arguments)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_journal.push_back((error ? "record! " : "record ") + arguments[3] + " " + arguments[9]);
    m_records.push_back(std::move(arguments));
}

void RecordingPlatform::tag(const std::string& productTag)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_tags.push_back(productTag);
}

Reply RecordingPlatform::send(const SentRequest& request)
{
    std::function<Reply(const SentRequest&)> answer;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_journal.push_back(request.text());
        m_requests.push_back(request);
        if (!m_script.empty()) {
            Reply reply = std::move(m_script.front());
            m_script.pop_front();
            return reply;
        }
        answer = m_answer;
    }
    return answer ? answer(request) : Reply::ok();
}
