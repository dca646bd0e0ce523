#include "http/FaultedAnswer.h"

#include "base/Json.h"

namespace arraysim {
namespace {

constexpr int FOUND = 302;

} // namespace

void sendAnswer(httplib::Response& response, const Answer& answer)
{
    response.status = answer.status;
    for (const auto& [key, value] : answer.headers) {
        response.set_header(key, value);
    }
    response.set_content(answer.body(), JSON_TYPE);
}

void FaultedAnswer::send(const SSL* connection, httplib::Response& response, const Answer& answer)
{
    sendAnswer(response, answer);
    const std::string body = response.body;
    switch (m_fault.action) {
    case FaultAction::CLOSE:
        m_connections.cut(connection);
        break;
    case FaultAction::RESET:
        m_connections.reset(connection);
        break;
    case FaultAction::TRUNCATE:
        truncate(response, body);
        break;
    case FaultAction::SLOW:
        dribble(response, body);
        break;
    case FaultAction::ENDLESS:
        neverEnd(response);
        break;
    case FaultAction::INVALID_JSON:
        response.body = body.substr(0, body.size() - 1) + ",";
        break;
    case FaultAction::ANSWER:
        response.status = m_fault.status;
        response.body = m_fault.body;
        break;
    case FaultAction::REDIRECT:
        response.status = m_fault.status == 200 ? FOUND : m_fault.status;
        response.set_header("Location", m_fault.location);
        response.body.clear();
        break;
    case FaultAction::DELAY:
    case FaultAction::ERROR:
    case FaultAction::DROP_SESSION:
        break;
    }
}

void FaultedAnswer::truncate(httplib::Response& response, const std::string& body)
{
    // The header promises the whole body; half of it follows, then the connection ends.
    response.body.clear();
    response.set_content_provider(body.size(), JSON_TYPE, [body](size_t, size_t, httplib::DataSink& sink) {
        sink.write(body.data(), body.size() / 2);
        return false;
    });
}

void FaultedAnswer::dribble(httplib::Response& response, const std::string& body)
{
    response.body.clear();
    response.set_content_provider(
        body.size(), JSON_TYPE,
        [body, &pauses = m_pauses, each = m_fault.pieceMs](size_t offset, size_t, httplib::DataSink& sink) {
            pauses.wait(each);
            return sink.write(body.data() + offset, 1);
        });
}

void FaultedAnswer::neverEnd(httplib::Response& response)
{
    response.body.clear();
    response.set_chunked_content_provider(
        JSON_TYPE, [&pauses = m_pauses](size_t offset, httplib::DataSink& sink) {
            const std::string piece = offset == 0 ? R"({"data":[0)" : std::string(4096, ' ') + ",0";
            return !pauses.areOver() && sink.write(piece.data(), piece.size());
        });
}

} // namespace arraysim
