#ifndef SIMULATOR_WIRE_SESSIONS_H
#define SIMULATOR_WIRE_SESSIONS_H

#include "wire/Answer.h"

#include <chrono>
#include <map>
#include <mutex>

namespace arraysim {

/** What a request proves its session with. */
struct Credentials
{
    std::string deviceId;
    std::string token;  ///< of the header iBaseToken
    std::string cookie; ///< the whole header Cookie
};

struct SessionSettings
{
    std::string user = "admin";
    std::string password;
    std::size_t limit = 100;
    std::chrono::seconds timeout{1200};
};

/** The open sessions. Thread-safe. */
class Sessions
{
public:
    Sessions(SessionSettings settings, std::string deviceId);

    /** Opens a session for the user name and password in the body. Throws ArrayError. */
    Answer login(const Json::Value& body);
    /** Finds the session and starts its idle time again. Throws ArrayError (SESSION_INVALID). */
    void require(const Credentials& credentials);
    /** Ends the session. Throws ArrayError (SESSION_INVALID). */
    void logout(const Credentials& credentials);
    void drop(const std::string& token);
    void dropAll();
    std::size_t count();
    /** The most that were open at a time, since the start or the last resetHighest(). */
    std::size_t highest();
    void resetHighest();
    /** The open sessions as a test may see them: number, in the order of the logins, and user. */
    Json::Value list();
    /** The number of the session with this token; 0 where there is none. */
    unsigned number(const std::string& token);
    /** Whether a text holds the password, or a token or cookie in force, be it percent-encoded. */
    bool isTold(const std::string& text);
    /** Lets time pass for the sessions alone, so that tests of the idle time need not wait. */
    void advance(std::chrono::seconds by);
    const std::string& user() const { return m_settings.user; }

private:
    struct Session
    {
        unsigned number;
        std::string cookie;
        std::chrono::steady_clock::time_point lastUse;
    };

    std::chrono::steady_clock::time_point now() const;
    std::map<std::string, Session>::iterator find(const Credentials& credentials);
    void expire();

    std::mutex m_mutex;
    const SessionSettings m_settings;
    const std::string m_deviceId;
    std::chrono::seconds m_advanced{0};
    std::map<std::string, Session> m_sessions; ///< by token
    std::size_t m_highest = 0;
    unsigned m_lastNumber = 0;
};

/** Hexadecimal digits from the system's random source, for tokens, cookies and passwords. */
std::string randomHex(std::size_t bytes);

} // namespace arraysim

#endif
