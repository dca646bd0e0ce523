#include <ovra/rest/RestRequest.h>
#include <ovra/threads/NoCancellation.h>

#include "AnswerReader.h"
#include "CallInForce.h"
#include "FailureNote.h"
#include "JsonBody.h"
#include "RequestTarget.h"
#include "ResponseImpl.h"
#include "SessionRegistry.h"
#include "Settings.h"
#include "Transfer.h"

#include <new>

using namespace ovra::rest;

class __attribute__((visibility("hidden"))) RestRequest::Impl
{
public:
    bool build(HttpRequest& request, const std::optional<ServerAddress>& server, const std::string& path,
               REST_REQUEST_MODE_E mode) const;
    int exchange(const HttpRequest& request, std::optional<Answer>& answer,
                 std::vector<std::string>& headerLines);

    JsonBody body;
    Headers headers;
    std::string serverUrl;
    bool badHeader = false;
};

bool RestRequest::Impl::build(HttpRequest& request, const std::optional<ServerAddress>& server,
                              const std::string& path, REST_REQUEST_MODE_E mode) const
{
    if (badHeader || !server || path[0] != '/') { // none of an empty one either
        return false;
    }
    request.server = *server;
    request.method = mode;
    request.target = encodeRequestTarget(path);
    request.headers.reserve(headers.size() + 2); // the session's come to them
    request.headers.insert(request.headers.end(), headers.begin(), headers.end());
    if (!body.empty() || mode == REST_POST || mode == REST_PUT) {
        request.body = body.text();
    }
    return true;
}

int RestRequest::Impl::exchange(const HttpRequest& request, std::optional<Answer>& answer,
                                std::vector<std::string>& headerLines)
{
    const RestSettings settings = CallInForce::settings();
    warnAboutSettings(settings);
    AnswerReader reader(CallInForce::keptMember());
    Transfer transfer(request, settings, reader);
    const int result = transfer.perform();
    headerLines = transfer.headers().lines();
    if (result != REST_OK) {
        return result;
    }
    answer = reader.answer();
    if (answer) {
        return REST_OK;
    }
    if (reader.excess().what != nullptr) {
        noteTooLarge(reader.excess());
        return REST_ANSWER_TOO_LARGE;
    }
    noteUnreadable(transfer.status());
    return REST_ANSWER_UNREADABLE;
}

namespace {

const char* headerName(HTTP_HEADER_E header)
{
    switch (header) {
    case HTTP_HEADER_TOKEN:
        return "iBaseToken";
    case HTTP_HEADER_COOKIE:
        return "Cookie";
    }
    return nullptr;
}

/// Runs one way of sending; only a lack of memory is an exception to the caller.
/// @param send gets a place for the server's name, once it is known.
template <class Send>
int guarded(std::vector<std::string>& headers, std::optional<Answer>& answer, Send send)
{
    const ovra::NoCancellation whole;
    std::optional<ServerAddress> server;
    int result = REST_INTERNAL_ERROR;
    failureNote() = RestFailure{};
    answer.reset();
    headers.clear();
    try {
        result = send(server);
    } catch (const std::bad_alloc&) {
        noteResult(result, server);
        throw;
    } catch (...) { // told as a failure on this side
    }
    noteResult(result, server);
    return result;
}

} // namespace

RestRequest::RestRequest() : m_impl(std::make_unique<Impl>()) {}
RestRequest::~RestRequest() = default;

template <class T>
void RestRequest::BodyAddProperty(const std::string& key, const T& value)
{
    m_impl->body.add(key, value);
}

template void RestRequest::BodyAddProperty<std::string>(const std::string&, const std::string&);
template void RestRequest::BodyAddProperty<int>(const std::string&, const int&);
template void RestRequest::BodyAddProperty<bool>(const std::string&, const bool&);
template void RestRequest::BodyAddProperty<unsigned long>(const std::string&, const unsigned long&);
template void RestRequest::BodyAddProperty<unsigned long long>(const std::string&, const unsigned long long&);

void RestRequest::HeaderAddProperty(const HTTP_HEADER_E& header, const std::string& value)
{
    const char* const name = headerName(header);
    if (name != nullptr && isSendableHeaderValue(value)) {
        setHeader(m_impl->headers, name, value);
    } else {
        m_impl->badHeader = true;
    }
}

void RestRequest::SetServerUrl(const std::string& url)
{
    m_impl->serverUrl = url;
}

int RestRequest::SendRequest(const unsigned int& sessionKey, const std::string& url,
                             const REST_REQUEST_MODE_E& mode, RestResponse& response,
                             std::vector<std::string>& headers, bool)
{
    std::optional<Answer>& answer = response.m_impl->answer;
    return guarded(headers, answer, [&](std::optional<ServerAddress>& server) -> int {
        const std::shared_ptr<const Session> session = SessionRegistry::instance().find(sessionKey);
        if (!session) {
            return REST_NO_SESSION;
        }
        if (url.empty() || url.front() != '/') {
            return REST_BAD_REQUEST;
        }
        HttpRequest request;
        server = ServerAddress::fromHostAndPort(session->ip, session->port);
        if (!m_impl->build(request, server, "/deviceManager/rest/" + session->deviceId + url, mode)) {
            return REST_BAD_REQUEST;
        }
        // Not kept in this object, which may be used for another server next.
        setHeader(request.headers, headerName(HTTP_HEADER_TOKEN), session->token);
        setHeader(request.headers, headerName(HTTP_HEADER_COOKIE), session->cookie);
        return m_impl->exchange(request, answer, headers);
    });
}

int RestRequest::SendRequest(const std::string& url, const REST_REQUEST_MODE_E& mode, RestResponse& response,
                             std::vector<std::string>& headers, bool)
{
    std::optional<Answer>& answer = response.m_impl->answer;
    return guarded(headers, answer, [&](std::optional<ServerAddress>& server) -> int {
        HttpRequest request;
        server = ServerAddress::fromUrl(m_impl->serverUrl);
        if (!m_impl->build(request, server, url, mode)) {
            return REST_BAD_REQUEST;
        }
        return m_impl->exchange(request, answer, headers);
    });
}
