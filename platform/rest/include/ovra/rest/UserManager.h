#ifndef OVRA_REST_USERMANAGER_H
#define OVRA_REST_USERMANAGER_H

#include <string>

class CDeviceManagerImpl; ///< only its address is used, as the identity of a session

/**
 * The process-wide registry of the sessions that requests are sent on. Thread-safe.
 *
 * A session is found by the low 32 bits of its identity, which is all that a request carries. Two live
 * identities that share them cannot be told apart, so the second one is refused.
 */
class __attribute__((visibility("default"))) CUserManager
{
public:
    /** @return the registry of this process, always the same; never null. */
    static CUserManager* getInstance();

    /**
     * Looks a session up.
     * @param identity whose session.
     * @return true when a session is registered for exactly this identity.
     */
    virtual bool hasUser(CDeviceManagerImpl* const& identity) = 0;

    /**
     * Registers, or replaces, the session of an identity. Requests sent with the low 32 bits of the identity
     * as session key go to "https://" + ip + ":" + port + "/deviceManager/rest/" + deviceId + relative path,
     * with token and cookie as headers.
     * @param identity whose session.
     * @param deviceId the array's ID, part of the path.
     * @param ip address of the server, IPv6 without brackets.
     * @param port 1 to 65535; another one is taken, and each request on the session fails.
     * @param token value of the token header.
     * @param cookie value of the cookie header.
     * @param loggedIn true for a session that a login opened, false for an adopted one.
     * @return false, and nothing is changed (a session that the identity has stays in force), when another
     *         live identity has the same low 32 bits, or when a value cannot be sent: a token or cookie with
     *         CR, LF or NUL, or a token, cookie or device ID of more than 8 KiB.
     */
    virtual bool addUser(CDeviceManagerImpl* const& identity, const std::string& deviceId,
                         const std::string& ip, const unsigned int& port, const std::string& token,
                         const std::string& cookie, const bool& loggedIn) = 0;

    /**
     * Forgets the session of exactly this identity. No request is sent.
     * @param identity whose session; unknown ones are ignored.
     */
    virtual void removeUser(CDeviceManagerImpl* const& identity) = 0;

protected:
    // Not virtual, so that the operations above are the first three virtual slots.
    ~CUserManager() = default;
};

#endif
