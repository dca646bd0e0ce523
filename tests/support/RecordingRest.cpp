// The interface of the REST library, implemented by the recorder.

#include "support/RecordingPlatform.h"

#include <ovra/rest/OvraTool.h>
#include <ovra/rest/UserManager.h>

#include <cstdlib>
#include <type_traits>

class RestResponse::Impl
{
public:
    Reply reply = Reply::noAnswer();
    Json::Value none;
};

class RestRequest::Impl
{
public:
    SentRequest request;
};

RestResponse::RestResponse() : m_impl(std::make_unique<Impl>()) {}
RestResponse::~RestResponse() = default;

int RestResponse::getResponseCode(std::string& description)
{
    description = m_impl->reply.description;
    return m_impl->reply.code;
}

unsigned long RestResponse::count()
{
    return m_impl->reply.records.size();
}

Json::Value& RestResponse::operator[](unsigned long index)
{
    return index < count() ? m_impl->reply.records[index] : (m_impl->none = Json::Value());
}

unsigned long RestResponse::str2ul(const std::string& text)
{
    return std::strtoul(text.c_str(), nullptr, 10);
}
unsigned long long RestResponse::str2ull(const std::string& text)
{
    return std::strtoull(text.c_str(), nullptr, 10);
}

RestRequest::RestRequest() : m_impl(std::make_unique<Impl>()) {}
RestRequest::~RestRequest() = default;

template <class T>
void RestRequest::BodyAddProperty(const std::string& key, const T& value)
{
    std::string typed;
    if constexpr (std::is_same_v<T, std::string>) {
        typed = "string:" + value;
    } else if constexpr (std::is_same_v<T, bool>) {
        typed = value ? "bool:true" : "bool:false";
    } else {
        const char* const type = std::is_same_v<T, int>             ? "int:"
                                 : std::is_same_v<T, unsigned long> ? "ul:"
                                                                    : "ull:";
        typed = type + std::to_string(value);
    }
    m_impl->request.body.emplace_back(key, typed);
}

template void RestRequest::BodyAddProperty<std::string>(const std::string&, const std::string&);
template void RestRequest::BodyAddProperty<int>(const std::string&, const int&);
template void RestRequest::BodyAddProperty<bool>(const std::string&, const bool&);
template void RestRequest::BodyAddProperty<unsigned long>(const std::string&, const unsigned long&);
template void RestRequest::BodyAddProperty<unsigned long long>(const std::string&, const unsigned long long&);

void RestRequest::HeaderAddProperty(const HTTP_HEADER_E& header, const std::string& value)
{
    m_impl->request.headers.emplace_back(header, value);
}

void RestRequest::SetServerUrl(const std::string& url)
{
    m_impl->request.server = url;
}

int RestRequest::SendRequest(const unsigned int& sessionKey, const std::string& url,
                             const REST_REQUEST_MODE_E& mode, RestResponse& response,
                             std::vector<std::string>& headers, bool flag)
{
    m_impl->request.onSession = true;
    m_impl->request.sessionKey = sessionKey;
    return SendRequest(url, mode, response, headers, flag);
}

int RestRequest::SendRequest(const std::string& url, const REST_REQUEST_MODE_E& mode, RestResponse& response,
                             std::vector<std::string>& headers, bool flag)
{
    m_impl->request.path = url;
    m_impl->request.mode = mode;
    m_impl->request.flag = flag;
    response.m_impl->reply = RecordingPlatform::get().send(m_impl->request);
    headers = response.m_impl->reply.headers;
    return response.m_impl->reply.sent;
}

namespace {

class RecordingUserManager final : public CUserManager
{
public:
    bool hasUser(CDeviceManagerImpl* const&) override { return false; }

    bool addUser(CDeviceManagerImpl* const&, const std::string& deviceId, const std::string& ip,
                 const unsigned int& port, const std::string& token, const std::string& cookie,
                 const bool& loggedIn) override
    {
        RecordingPlatform::get().note("addUser " + deviceId + "|" + ip + "|" + std::to_string(port) + "|" +
                                      token + "|" + cookie + "|" + (loggedIn ? "true" : "false"));
        return RecordingPlatform::get().acceptUsers;
    }

    void removeUser(CDeviceManagerImpl* const&) override { RecordingPlatform::get().note("removeUser"); }
};

} // namespace

CUserManager* CUserManager::getInstance()
{
    static RecordingUserManager* const instance = new RecordingUserManager;
    return instance;
}

bool OvraTool::CheckIPValid(const std::string&)
{
    return RecordingPlatform::get().ipValid;
}
