#ifndef OVRA_REST_SESSIONREGISTRY_H
#define OVRA_REST_SESSIONREGISTRY_H

#include <ovra/rest/UserManager.h>
#include <ovra/text/Secret.h>

#include <map>
#include <memory>

namespace ovra::rest {

/** A session that requests can be sent on. */
struct Session
{
    const void* identity = nullptr;
    std::string deviceId; ///< as it stands in the path
    std::string ip;
    unsigned int port = 0;
    SecretText token;
    SecretText cookie;
};

/** The process's sessions by the low 32 bits of their identity. */
class SessionRegistry final : public CUserManager
{
public:
    static SessionRegistry& instance();

    bool hasUser(CDeviceManagerImpl* const& identity) override;
    bool addUser(CDeviceManagerImpl* const& identity, const std::string& deviceId, const std::string& ip,
                 const unsigned int& port, const std::string& token, const std::string& cookie,
                 const bool& loggedIn) override;
    void removeUser(CDeviceManagerImpl* const& identity) override;

    /** The session registered under a key; null when there is none. */
    std::shared_ptr<const Session> find(unsigned int sessionKey) const;

private:
    std::map<unsigned int, std::shared_ptr<const Session>> m_sessions; ///< guarded by the library's lock
};

} // namespace ovra::rest

#endif
