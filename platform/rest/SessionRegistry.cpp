#include "SessionRegistry.h"

#include "HeaderLines.h"
#include "LibraryLock.h"

#include <ovra/text/PathData.h>

#include <cstdint>

CUserManager* CUserManager::getInstance()
{
    return &ovra::rest::SessionRegistry::instance();
}

namespace ovra::rest {

namespace {

unsigned int keyOf(const void* identity)
{
    return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(identity) & 0xFFFFFFFFU);
}

} // namespace

SessionRegistry& SessionRegistry::instance()
{
    const std::lock_guard<std::mutex> lock(libraryMutex());
    return processWide<SessionRegistry>();
}

bool SessionRegistry::hasUser(CDeviceManagerImpl* const& identity)
{
    const std::shared_ptr<const Session> session = find(keyOf(identity));
    return session && session->identity == identity;
}

bool SessionRegistry::addUser(CDeviceManagerImpl* const& identity, const std::string& deviceId,
                              const std::string& ip, const unsigned int& port, const std::string& token,
                              const std::string& cookie, const bool& /*loggedIn*/)
{
    const unsigned int key = keyOf(identity);
    if (key == 0 || deviceId == "." || deviceId == ".." || deviceId.size() > MOST_VALUE_BYTES ||
        !isSendableHeaderValue(token) || !isSendableHeaderValue(cookie)) {
        return false;
    }
    auto session = std::make_shared<Session>();
    session->identity = identity;
    session->deviceId = pathData(deviceId);
    session->ip = ip;
    session->port = port;
    session->token = token;
    session->cookie = cookie;

    const std::lock_guard<std::mutex> lock(libraryMutex());
    std::shared_ptr<const Session>& place = m_sessions[key];
    if (place && place->identity != identity) {
        return false;
    }
    place = std::move(session);
    return true;
}

void SessionRegistry::removeUser(CDeviceManagerImpl* const& identity)
{
    const std::lock_guard<std::mutex> lock(libraryMutex());
    const auto found = m_sessions.find(keyOf(identity));
    if (found != m_sessions.end() && found->second->identity == identity) {
        m_sessions.erase(found);
    }
}

std::shared_ptr<const Session> SessionRegistry::find(unsigned int sessionKey) const
{
    const std::lock_guard<std::mutex> lock(libraryMutex());
    const auto found = m_sessions.find(sessionKey);
    return found == m_sessions.end() ? nullptr : found->second;
}

} // namespace ovra::rest
