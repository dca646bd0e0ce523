#include "session/Session.h"

#include "kernel/Failure.h"
#include "session/Advice.h"
#include "session/Secret.h"

#include <chrono>

namespace tesselctl {
namespace {

constexpr unsigned int READ_BACK_TIMES = 10;
constexpr std::chrono::seconds LOGIN_PATIENCE(2);
constexpr unsigned int READ_BACK_PAUSE_MICROSECONDS = 500000;

/** The text of an option, or of the environment variable that stands in for it. */
std::string given(const Values& values, const char* option, const char* variable)
{
    return values.has(option) ? values.text(option) : environment(variable);
}

std::string secret(const Values& values, const char* fileOption, const char* variable)
{
    return values.has(fileOption) ? secretFromFile(fileOption, values.text(fileOption))
                                  : environment(variable);
}

/** Which of the two it is, user name or session table, only the array's own words tell. */
Failure loginFailure(const std::string& array, const std::string& user)
{
    const auto failure = ovra::tessel::lastFailure();
    const std::string advice = transportAdvice(failure, array);
    if (!advice.empty()) {
        return Failure(advice);
    }
    const bool isRefused = failure.code != 0;
    return Failure("the array " + array +
                       (isRefused ? " refused the login of " : " did not open a session for ") + user + ": " +
                       (isRefused ? refusalOf(failure) : failure.message) + "; see also the run log, " +
                       logDirectory(),
                   ExitCode::FAILURE, failure.code);
}

} // namespace

std::unique_ptr<Session> Session::open(const Values& values)
{
    const std::string array = given(values, "--array", "TESSEL_ARRAY");
    if (array.empty()) {
        throw UsageError("no array is named: give --array IP[:PORT] or set TESSEL_ARRAY");
    }
    const bool adopted = values.has("--device-id");
    std::unique_ptr<Session> session(new Session(parseArrayAddress("--array", array), adopted));
    adopted ? session->adopt(values) : session->logIn(values);
    return session;
}

Session::Session(const ArrayAddress& address, bool adopted)
    : m_manager(CDeviceManager::getInstance(READ_BACK_TIMES, READ_BACK_PAUSE_MICROSECONDS)),
      m_address(address), m_adopted(adopted)
{
    ovra::tessel::addObserver(ovra::tessel::auditFile()); // what is changed by hand is written down too
}

Session::~Session()
{
    close();
}

void Session::logIn(const Values& values)
{
    const std::string user = given(values, "--user", "TESSEL_USER");
    if (user.empty()) {
        throw UsageError("no user is named: give --user NAME or set TESSEL_USER");
    }
    std::string password = secret(values, "--password-file", "TESSEL_PASSWORD");
    if (password.empty()) {
        password = askSecret("Password of " + user + " on " + m_address.text() + ": ");
    }
    m_signalExit = std::make_unique<SignalExit>([this] { close(); });
    const std::lock_guard<std::timed_mutex> lock(m_change);
    const USERTYPE scope = values.text("--scope") == "domain" ? USERTYPE_DOMAIN : USERTYPE_LOCAL;
    if (!m_manager->loginDevice(m_address.ip, m_address.port, user, password, scope)) {
        throw loginFailure(m_address.text(), user);
    }
    m_open = true;
}

void Session::adopt(const Values& values)
{
    const std::string token = secret(values, "--token-file", "TESSEL_TOKEN");
    const std::string cookie = secret(values, "--cookie-file", "TESSEL_COOKIE");
    if (token.empty() || cookie.empty()) {
        throw UsageError(
            "--device-id adopts an open session and needs its token (--token-file or TESSEL_TOKEN) "
            "and its cookie (--cookie-file or TESSEL_COOKIE)");
    }
    if (!m_manager->useConnection(m_address.ip, m_address.port, values.text("--device-id"), token, cookie)) {
        throw UsageError(
            "the session could not be adopted: device ID, token or cookie is empty or cannot be sent, "
            "as the run log in " +
            logDirectory() + " tells");
    }
}

bool Session::close()
{
    // Called for a signal it meets a login under way: without an answer in time there is nothing to log out
    // of.
    const std::unique_lock<std::timed_mutex> lock(m_change, LOGIN_PATIENCE);
    const bool logOut = m_open; // an adopted one never is
    m_open = false;
    return !logOut || m_manager->logoutDevice();
}

} // namespace tesselctl
