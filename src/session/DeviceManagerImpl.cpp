#include "session/DeviceManagerImpl.h"

#include "observer/Observers.h"
#include "session/Log.h"
#include "session/Retry.h"
#include "session/SessionKeys.h"

#include <ovra/rest/UserManager.h>
#include <ovra/threads/NoCancellation.h>

#include <cstdint>
#include <memory>
#include <vector>

using namespace ovra::tessel;

unsigned int gRetryTimes = 0;
unsigned int gRetrySleepTimeMicroSeconds = 500000;

pthread_mutex_t CDeviceManagerImpl::m_mutex = PTHREAD_MUTEX_INITIALIZER;
int CDeviceManagerImpl::iniCnt = 0;

namespace {

class MutexLock
{
public:
    explicit MutexLock(pthread_mutex_t& mutex) : m_mutex(mutex) { pthread_mutex_lock(&m_mutex); }
    ~MutexLock() { pthread_mutex_unlock(&m_mutex); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    pthread_mutex_t& m_mutex;
};

} // namespace

CDeviceManager::~CDeviceManager() = default;

CDeviceManager* CDeviceManager::getInstance(unsigned int retryTimes, unsigned int retrySleepMicroSeconds)
{
    return CDeviceManagerImpl::createInstance(retryTimes, retrySleepMicroSeconds);
}

void CDeviceManager::releaseInstance(CDeviceManager* p)
{
    auto* const deviceManager = static_cast<CDeviceManagerImpl*>(p);
    CUserManager::getInstance()->removeUser(deviceManager);
    CDeviceManagerImpl::destroyInstance(deviceManager);
}

CDeviceManagerImpl* CDeviceManagerImpl::createInstance(unsigned int retryTimes,
                                                       unsigned int retrySleepMicroSeconds)
{
    auto deviceManager = std::make_unique<CDeviceManagerImpl>();
    std::vector<std::unique_ptr<CDeviceManagerImpl>>
        unusable; // kept until a free key is found: else they come again
    while (!SessionKeys::claim(sessionKey(deviceManager.get()))) {
        unusable.push_back(std::move(deviceManager));
        deviceManager = std::make_unique<CDeviceManagerImpl>();
    }
    try {
        initial(retryTimes, retrySleepMicroSeconds);
    } catch (...) {
        SessionKeys::release(sessionKey(deviceManager.get()));
        throw;
    }
    return deviceManager.release();
}

void CDeviceManagerImpl::destroyInstance(CDeviceManagerImpl* p)
{
    if (p != nullptr) {
        uninitial();
        SessionKeys::release(sessionKey(p));
        sessions::forget(p);
        delete p;
    }
}

void CDeviceManagerImpl::initial(unsigned int retryTimes, unsigned int retrySleepMicroSeconds)
{
    const ovra::NoCancellation whole;
    const MutexLock lock(m_mutex);
    COMMLOG(OS_LOG_INFO, "enter CDeviceManagerImpl::initial()!"); // docs/oddities.md#first-enter-line
    if (iniCnt == 0) {
        LOG_INIT(); // a host without a place for its logs is still to be served
        gRetryTimes = retryTimes;
        gRetrySleepTimeMicroSeconds = retrySleepMicroSeconds;
    }
    ++iniCnt;
    COMMLOG(OS_LOG_INFO, "leave CDeviceManagerImpl::initial()!");
}

void CDeviceManagerImpl::uninitial()
{
    const ovra::NoCancellation whole;
    const MutexLock lock(m_mutex);
    COMMLOG(OS_LOG_INFO, "enter CDeviceManagerImpl::uninitial()!");
    if (--iniCnt == 0) {
        LOG_EXIT();
    }
    COMMLOG(OS_LOG_INFO, "leave CDeviceManagerImpl::uninitial()!");
}

unsigned int CDeviceManagerImpl::sessionKey(const CDeviceManagerImpl* p)
{
    return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(p));
}

bool CDeviceManagerImpl::adopt(const std::string& ip, unsigned int port, const std::string& deviceId,
                               const std::string& token, const std::string& cookie, bool loggedIn)
{
    if (!CUserManager::getInstance()->addUser(this, deviceId, ip, port, token, cookie, loggedIn)) {
        if (m_registration == Registration::NONE) {
            m_registration = Registration::REFUSED;
        }
        return false;
    }
    m_registration = Registration::IN_FORCE;
    m_ip = ip;
    m_port = port;
    m_token = token;
    m_cookie = cookie;
    m_deviceId = deviceId;
    return true;
}

ovra::tessel::Answer CDeviceManagerImpl::send(const CDeviceManagerImpl* deviceManager, RestRequest& request,
                                              REST_REQUEST_MODE_E mode, const std::string& url)
{
    if (deviceManager != nullptr && deviceManager->m_registration == Registration::REFUSED) {
        return Answer(REST_NO_SESSION);
    }
    return Answer::to([&](RestResponse& response, std::vector<std::string>& headers) {
        return request.SendRequest(sessionKey(deviceManager), url, mode, response, headers, true);
    });
}
