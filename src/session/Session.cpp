#include "session/DeviceManagerImpl.h"
#include "session/Operation.h"

#include <ovra/rest/OvraTool.h>
#include <ovra/rest/UserManager.h>

#include <cstring>
#include <new>
#include <optional>

using namespace ovra::tessel;

namespace {

constexpr unsigned int MAX_PORT = 65535;
constexpr const char* NOT_REGISTERED = "device ID, token or cookie cannot be sent (a line break, more than 8 "
                                       "KiB), or another live session of this "
                                       "process has the same key: release it first";
constexpr const char* NO_SESSION_IN_ANSWER = "the answer holds no device ID or no token";

Frame loginFrame()
{
    return {"loginDevice", "Login device start...", "Login device OK",
            "Login device fail, please check network or device is OK", "Login device fail,err msg:"};
}

Frame logoutFrame()
{
    const Frame frame("logoutDevice", "Logout device start...", "Logout device OK", "Logout device fail",
                      "Logout device fail err msg:");
    return frame.timedFirst();
}

Frame keepAliveFrame()
{
    // No name, so no record: docs/oddities.md#keepalive
    const Frame frame("", "Keep alive start...", "", "Keep alive fail!", "Keep alive fail err msg:");
    return frame.observedAs("keepAlive");
}

Frame useConnectionFrame()
{
    return {"useConnection", "Use existed connection start...", "Use existed connection successfully!",
            "Use existed connection fail", "Use existed connection fail,err msg:"};
}

/** What stands before the first ";" of the first such line: docs/oddities.md#cookie */
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

/** Of a device ID; these two would make another path of the one that it stands in. */
bool isUsable(const std::string& deviceId)
{
    return !deviceId.empty() && deviceId != "." && deviceId != "..";
}

std::string serverUrl(const std::string& ip, unsigned int port)
{
    return "https://" + ip + ":" + std::to_string(port);
}

/** Sends a request that names its server itself. */
Answer exchange(RestRequest& request, REST_REQUEST_MODE_E mode, const std::string& path, bool flag)
{
    return Answer::to([&](RestResponse& response, std::vector<std::string>& headers) {
        return request.SendRequest("/deviceManager/rest/" + path, mode, response, headers, flag);
    });
}

/** A session on the array. */
struct OpenSession
{
    const std::string& ip;
    const unsigned int port;
    const std::string& deviceId;
    const std::string& token;
    const std::string& cookie;

    /** A request about the session itself, which does not go through the registry. */
    Answer send(REST_REQUEST_MODE_E mode, const char* resource, bool withToken = true,
                bool withCookie = true) const
    {
        RestRequest request;
        if (withToken) {
            request.HeaderAddProperty(HTTP_HEADER_TOKEN, token);
        }
        if (withCookie) {
            request.HeaderAddProperty(HTTP_HEADER_COOKIE, cookie);
        }
        request.SetServerUrl(serverUrl(ip, port));
        return exchange(request, mode, urlValue(deviceId) + resource, false);
    }

    /** Ends it though it was opened for nothing: where one of its headers cannot be sent, by the other. */
    void abandon() const
    {
        if (send(REST_DELETE, "/sessions").reason() == REST_BAD_REQUEST &&
            send(REST_DELETE, "/sessions", false, true).reason() == REST_BAD_REQUEST) {
            send(REST_DELETE, "/sessions", true, false);
        }
    }
};

/** What a login's answer opens. */
struct NewSession
{
    explicit NewSession(const Answer& answer)
        : deviceId(answer[0]["deviceid"].asString()),
          token(answer[0]["iBaseToken"].asString()), // docs/oddities.md#ibasetoken
          cookie(findCookie(answer.headers()))
    {
    }

    OpenSession at(const std::string& ip, unsigned int port) const
    {
        return {ip, port, deviceId, token, cookie};
    }

    const std::string deviceId;
    const std::string token;
    const std::string cookie;
};

/** An answer that says no, or is none of an array; not one that is missing. */
bool isRefused(const Answer& answer)
{
    std::string description;
    return answer.reason() == REST_ANSWER_UNREADABLE ||
           (answer.reason() == 0 && answer.code(description) != 0);
}

/** Whether the array opened a session; nothing where the source gave no credentials. */
std::optional<bool> loginAgain(CDeviceManager& manager, const std::string& ip, unsigned int port,
                               const CredentialsSource& source)
{
    Credentials credentials;
    std::optional<bool> isOpen;
    try {
        if (source(credentials)) {
            isOpen =
                manager.loginDevice(ip, port, credentials.userName, credentials.password, credentials.scope);
        }
    } catch (...) { // of the source: there are no credentials then
        COMMLOG(OS_LOG_WARN, "The source of the credentials for another login failed.");
    }
    explicit_bzero(&credentials.password[0], credentials.password.size());
    return isOpen;
}

} // namespace

bool CDeviceManagerImpl::loginDevice(const std::string& ip, const unsigned int& port,
                                     const std::string& userName, const std::string& password,
                                     const USERTYPE& scope)
{
    return Operation::succeeds(&loginFrame, this, [&](Operation& op) {
        op.seen().opens(ip, port, userName);
        op.seen().setChange();
        op.require(!ip.empty() && !userName.empty() && !password.empty(), "Invalid Parameter!");
        op.require(OvraTool::CheckIPValid(ip), "Invalid ip address!");
        op.require(port != 0 && port <= MAX_PORT, "Invalid port!");
        op.request().SetServerUrl(serverUrl(ip, port));
        op.add("username", userName);
        op.add("password", password);
        op.add("scope", static_cast<int>(scope));
        // docs/oddities.md#xxxx
        const Answer answer = op.checked(exchange(op.request(), REST_POST, "xxxx/sessions", true));

        try {
            const NewSession session(answer);
            op.require(!session.cookie.empty(), "Get cookie Err", FailureKind::UNREADABLE_ANSWER);
            if (!isUsable(session.deviceId) || session.token.empty()) {
                op.refuse(NO_SESSION_IN_ANSWER, REST_ANSWER_UNREADABLE, FailureKind::UNREADABLE_ANSWER);
            }
            if (!adopt(ip, port, session.deviceId, session.token, session.cookie, true)) {
                session.at(ip, port).abandon();
                op.refuse(NOT_REGISTERED, REST_NO_SESSION, FailureKind::UNREADABLE_ANSWER);
            }
            sessions::set(this, sessions::named(ip, port, userName));
            if (optionsOf(this)) {
                changeOptions(*this, [](ManagerOptions& changed) { changed.areCredentialsRefused = false; });
            }
        } catch (const std::bad_alloc&) {
            NewSession(answer)
                .at(ip, port)
                .abandon(); // it was opened for nothing, unless there is no memory at all
            throw;
        }
    });
}

bool CDeviceManagerImpl::opensAgain(const Answer& refused)
{
    const auto options = optionsOf(this);
    if (!options || !options->credentials || options->areCredentialsRefused ||
        m_registration != Registration::IN_FORCE || !isRefused(refused)) {
        return false;
    }
    const OpenSession session{m_ip, m_port, m_deviceId, m_token, m_cookie};
    if (!isRefused(session.send(REST_GET, "/server/logininfo"))) {
        return false; // it was refused for what it asks
    }
    const std::optional<bool> isOpen = loginAgain(*this, m_ip, m_port, *options->credentials);
    const bool areRefused = isOpen == false && lastFailure().kind == FailureKind::REFUSED;
    if (areRefused) { // tried again they might lock the account
        changeOptions(*this, [](ManagerOptions& changed) { changed.areCredentialsRefused = true; });
    }
    return isOpen.value_or(false);
}

bool CDeviceManagerImpl::logoutDevice()
{
    return Operation::succeeds(&logoutFrame, this, [&](Operation& op) {
        op.seen().setChange();
        const OpenSession session{m_ip, m_port, m_deviceId, m_token, m_cookie};
        op.checked(session.send(REST_DELETE, "/sessions"));
        CUserManager::getInstance()->removeUser(this);
        m_registration = Registration::NONE;
    });
}

bool CDeviceManagerImpl::keepAlive()
{
    return Operation::succeeds(&keepAliveFrame, this, [&](Operation& op) {
        const OpenSession session{m_ip, m_port, m_deviceId, m_token, m_cookie};
        op.checked(session.send(REST_GET, "/server/logininfo"));
    });
}

bool CDeviceManagerImpl::useConnection(const std::string& ip, const unsigned int& port,
                                       const std::string& deviceId, const std::string& token,
                                       const std::string& cookie)
{
    return Operation::succeeds(&useConnectionFrame, this, [&](Operation& op) {
        op.seen().opens(ip, port, "");
        op.seen().setChange();
        op.require(!ip.empty() && isUsable(deviceId) && !token.empty() && !cookie.empty(),
                   "Invalid Parameter!");
        op.require(OvraTool::CheckIPValid(ip), "Invalid ip address!");
        if (!adopt(ip, port, deviceId, token, cookie, false)) {
            op.refuse(NOT_REGISTERED, REST_NO_SESSION, FailureKind::ARGUMENT);
        }
        sessions::set(this, sessions::named(ip, port, ""));
    });
}
