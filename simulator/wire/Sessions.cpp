#include "wire/Sessions.h"

#include "base/Json.h"
#include "wire/Target.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace arraysim {
namespace {

/** A password that is shorter stands in every other word by chance. */
constexpr std::size_t SHORTEST_SECRET = 4;

/** Compares digests, so that the time taken tells nothing about the texts or their lengths. */
bool sameSecret(const std::string& a, const std::string& b)
{
    unsigned char left[EVP_MAX_MD_SIZE];
    unsigned char right[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    return EVP_Digest(a.data(), a.size(), left, &size, EVP_sha256(), nullptr) == 1 &&
           EVP_Digest(b.data(), b.size(), right, &size, EVP_sha256(), nullptr) == 1 &&
           CRYPTO_memcmp(left, right, size) == 0;
}

/** The value of the cookie "session" in a Cookie header, which may carry others too. */
std::string sessionCookie(const std::string& header)
{
    static const std::string NAME = "session=";
    std::size_t at = 0;
    while (at < header.size()) {
        at = header.find_first_not_of("; ", at);
        if (at == std::string::npos) {
            break;
        }
        const std::size_t end = std::min(header.find(';', at), header.size());
        if (header.compare(at, NAME.size(), NAME) == 0) {
            return header.substr(at + NAME.size(), end - at - NAME.size());
        }
        at = end;
    }
    return {};
}

} // namespace

std::string randomHex(std::size_t bytes)
{
    static constexpr const char* DIGITS = "0123456789abcdef";
    std::string raw(bytes, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(raw.data()), static_cast<int>(bytes)) != 1) {
        throw std::runtime_error("the system's random source does not answer");
    }
    std::string text;
    for (const char c : raw) {
        const auto byte = static_cast<unsigned char>(c);
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 15];
    }
    return text;
}

Sessions::Sessions(SessionSettings settings, std::string deviceId)
    : m_settings(std::move(settings)), m_deviceId(std::move(deviceId))
{
}

Answer Sessions::login(const Json::Value& body)
{
    allowMembers(body, {"username", "password", "scope"});
    const std::string user = requiredText(body, "username");
    const std::string password = requiredText(body, "password");
    const int scope = requiredNumber(body, "scope");
    if (user != m_settings.user || !sameSecret(password, m_settings.password)) {
        throw ArrayError(Code::LOGIN_REFUSED, "The user name or password is incorrect.");
    }
    const std::lock_guard<std::mutex> guard(m_mutex);
    expire();
    if (m_sessions.size() >= m_settings.limit) {
        throw ArrayError(Code::SESSION_LIMIT,
                         "All " + std::to_string(m_settings.limit) +
                             " sessions are in use: log out of one, or wait until one expires.");
    }
    const std::string token = randomHex(32);
    const std::string cookie = randomHex(32);
    m_sessions[token] = {++m_lastNumber, cookie, now()};
    m_highest = std::max(m_highest, m_sessions.size());

    Json::Value session(Json::objectValue);
    session["deviceid"] = m_deviceId;
    session["iBaseToken"] = token;
    session["username"] = user;
    session["userscope"] = std::to_string(scope);
    session["accountstate"] = "1";
    session["level"] = "1";
    Answer answer = Answer::records(std::move(session));
    answer.headers.emplace_back("Set-Cookie", "session=" + cookie + "; path=/; Secure; HttpOnly");
    return answer;
}

void Sessions::require(const Credentials& credentials)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    find(credentials)->second.lastUse = now();
}

void Sessions::logout(const Credentials& credentials)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_sessions.erase(find(credentials));
}

void Sessions::drop(const std::string& token)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_sessions.erase(token);
}

void Sessions::dropAll()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_sessions.clear();
}

std::size_t Sessions::count()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    expire();
    return m_sessions.size();
}

std::size_t Sessions::highest()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_highest;
}

void Sessions::resetHighest()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    expire();
    m_highest = m_sessions.size();
}

Json::Value Sessions::list()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    expire();
    std::map<unsigned, Json::Value> ordered;
    for (const auto& entry : m_sessions) {
        Json::Value& session = ordered[entry.second.number];
        session["number"] = entry.second.number;
        session["user"] = m_settings.user;
    }
    Json::Value all(Json::arrayValue);
    for (auto& entry : ordered) {
        all.append(std::move(entry.second));
    }
    return all;
}

unsigned Sessions::number(const std::string& token)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto found = m_sessions.find(token);
    return found == m_sessions.end() ? 0 : found->second.number;
}

bool Sessions::isTold(const std::string& text)
{
    std::string decoded;
    try {
        decoded = percentDecode(text, true);
    } catch (const ArrayError&) {
        // It holds no escapes that anybody could read.
    }
    const auto tells = [&](const std::string& secret) {
        return secret.size() >= SHORTEST_SECRET &&
               (text.find(secret) != std::string::npos ||
                (decoded != text && decoded.find(secret) != std::string::npos));
    };
    const std::lock_guard<std::mutex> guard(m_mutex);
    return tells(m_settings.password) ||
           std::any_of(m_sessions.begin(), m_sessions.end(), [&](const auto& session) {
               return tells(session.first) || tells(session.second.cookie);
           });
}

void Sessions::advance(std::chrono::seconds by)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_advanced += by;
}

std::chrono::steady_clock::time_point Sessions::now() const
{
    return std::chrono::steady_clock::now() + m_advanced;
}

std::map<std::string, Sessions::Session>::iterator Sessions::find(const Credentials& credentials)
{
    expire();
    const auto found = m_sessions.find(credentials.token);
    if (credentials.deviceId != m_deviceId || found == m_sessions.end() ||
        !sameSecret(sessionCookie(credentials.cookie), found->second.cookie)) {
        throw ArrayError(Code::SESSION_INVALID,
                         "The request belongs to no session, or the session has expired: log in again.");
    }
    return found;
}

void Sessions::expire()
{
    for (auto it = m_sessions.begin(); it != m_sessions.end();) {
        it = now() - it->second.lastUse > m_settings.timeout ? m_sessions.erase(it) : std::next(it);
    }
}

} // namespace arraysim
