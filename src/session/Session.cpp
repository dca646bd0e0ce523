#include "session/DeviceManagerImpl.h"
#include "session/Log.h"
#include "session/SessionCall.h"

#include <ovra/rest/OvraTool.h>
#include <ovra/rest/RestRequest.h>
#include <ovra/rest/UserManager.h>

#include <vector>

using namespace ovra::tessel;

namespace {

const unsigned int MAX_PORT = 65535;
const char* const REST_ROOT = "/deviceManager/rest/";
const char* const NOT_REGISTERED = "token or cookie hold a line break, or another live session of this "
                                   "process has the same key: release it first";

const SessionCall::Texts LOGIN = {"loginDevice", "Login device start...",
                                  "Login device fail, please check network or device is OK",
                                  "Login device fail,err msg:"};
const SessionCall::Texts LOGOUT = {"logoutDevice", "Logout device start...", "Logout device fail",
                                   "Logout device fail err msg:"};
const SessionCall::Texts KEEP_ALIVE = {nullptr, "Keep alive start...", "Keep alive fail!",
                                       "Keep alive fail err msg:"};
const SessionCall::Texts USE_CONNECTION = {"useConnection", "Use existed connection start...",
                                           "Use existed connection fail",
                                           "Use existed connection fail,err msg:"};

/** The cookie is what stands before the first ";" of the first such line, leading blank included. */
std::string findCookie(const std::vector<std::string>& headers)
{
    const std::string name = "Set-Cookie:";
    for (const std::string& line : headers) {
        const size_t found = line.find(name);
        if (found == std::string::npos) {
            continue;
        }
        const size_t begin = found + name.size();
        const size_t end = line.find(';', begin);
        return end == std::string::npos ? std::string() : line.substr(begin, end - begin);
    }
    return std::string();
}

std::string serverUrl(const std::string& ip, unsigned int port)
{
    return "https://" + ip + ":" + std::to_string(port);
}

/** A request of the session itself, which carries token and cookie but does not go through the registry. */
int sendOnSession(const std::string& server, const std::string& token, const std::string& cookie,
                  const std::string& path, REST_REQUEST_MODE_E mode, RestResponse& response)
{
    RestRequest request;
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, token);
    request.HeaderAddProperty(HTTP_HEADER_COOKIE, cookie);
    request.SetServerUrl(server);
    std::vector<std::string> headers;
    return request.SendRequest(REST_ROOT + path, mode, response, headers, false);
}

} // namespace

bool CDeviceManagerImpl::loginDevice(const std::string& ip, const unsigned int& port,
                                     const std::string& userName, const std::string& password,
                                     const USERTYPE& scope)
{
    const SessionCall call(LOGIN);
    return call.run([&] {
        call.require(!ip.empty() && !userName.empty() && !password.empty(), "Invalid Parameter!");
        call.require(OvraTool::CheckIPValid(ip), "Invalid ip address!");
        call.require(port != 0 && port <= MAX_PORT, "Invalid port!");

        RestRequest request;
        request.SetServerUrl(serverUrl(ip, port));
        request.BodyAddProperty("username", userName);
        request.BodyAddProperty("password", password);
        request.BodyAddProperty("scope", static_cast<int>(scope));
        RestResponse response;
        std::vector<std::string> headers;
        // "xxxx" stands in the path as it is: the device id is what the login is to tell.
        call.checkAnswer(
            request.SendRequest("/deviceManager/rest/xxxx/sessions", REST_POST, response, headers, true),
            response);

        const std::string deviceId = response[0]["deviceid"].asString();
        const std::string token = response[0]["iBaseToken"].asString();
        const std::string cookie = findCookie(headers);
        call.require(!cookie.empty(), "Get cookie Err");
        call.require(!deviceId.empty() && !token.empty(), LOGIN.noAnswer, REST_ANSWER_UNREADABLE);
        if (!adopt(ip, port, deviceId, token, cookie, true)) {
            RestResponse ignored; // the session was opened for nothing: the array is to forget it again
            sendOnSession(serverUrl(ip, port), token, cookie, deviceId + "/sessions", REST_DELETE, ignored);
            call.refuse(NOT_REGISTERED, REST_NO_SESSION);
        }
        COMMLOG(OS_LOG_INFO, "Login device OK");
    });
}

bool CDeviceManagerImpl::logoutDevice()
{
    const SessionCall call(LOGOUT);
    return call.run([&] {
        RestResponse response;
        const int sent = sendOnSession(serverUrl(m_ip, m_port), m_token, m_cookie, m_deviceId + "/sessions",
                                       REST_DELETE, response);
        call.checkAnswer(sent, response);
        CUserManager::getInstance()->removeUser(this);
        COMMLOG(OS_LOG_INFO, "Logout device OK");
    });
}

bool CDeviceManagerImpl::keepAlive()
{
    const SessionCall call(KEEP_ALIVE);
    return call.run([&] {
        RestResponse response;
        const int sent = sendOnSession(serverUrl(m_ip, m_port), m_token, m_cookie,
                                       m_deviceId + "/server/logininfo", REST_GET, response);
        call.checkAnswer(sent, response);
    });
}

bool CDeviceManagerImpl::useConnection(const std::string& ip, const unsigned int& port,
                                       const std::string& deviceId, const std::string& token,
                                       const std::string& cookie)
{
    const SessionCall call(USE_CONNECTION);
    return call.run([&] {
        call.require(!ip.empty() && !deviceId.empty() && !token.empty() && !cookie.empty(),
                     "Invalid Parameter!");
        call.require(OvraTool::CheckIPValid(ip), "Invalid ip address!");
        if (!adopt(ip, port, deviceId, token, cookie, false)) {
            call.refuse(NOT_REGISTERED, REST_NO_SESSION);
        }
        COMMLOG(OS_LOG_INFO, "Use existed connection successfully!");
    });
}
