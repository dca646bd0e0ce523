#ifndef SESSION_DEVICEMANAGERIMPL_H
#define SESSION_DEVICEMANAGERIMPL_H

#include "session/Answer.h"

#include <ovra/rest/RestRequest.h>
#include <tessel/DeviceManager.h>

#include <pthread.h>
#include <string>

class CLunHandlerImpl;
class CLunGroupHandlerImpl;
class CIscsiInitiatorHandlerImpl;
class CHostHandlerImpl;
class CHostGroupHandlerImpl;
class CMappingViewHandlerImpl;
class CDiskAttachHandlerImpl;
class CSnapshotHandlerImpl;
class CFCInitiatorHandlerImpl;
class CEthPortHandlerImpl;
class CFCPortHandlerImpl;
class CFCoEPortHandlerImpl;
class CDiskScannerHandlerImpl;

class CDeviceManagerImpl : public CDeviceManager
{
public:
    CDeviceManagerImpl() = default;
    ~CDeviceManagerImpl() override;
    CDeviceManagerImpl(const CDeviceManagerImpl&) = delete;
    CDeviceManagerImpl& operator=(const CDeviceManagerImpl&) = delete;

    static CDeviceManagerImpl* createInstance(unsigned int retryTimes, unsigned int retrySleepMicroSeconds);
    static void destroyInstance(CDeviceManagerImpl* p);
    static void initial(unsigned int retryTimes, unsigned int retrySleepMicroSeconds);
    static void uninitial();

    bool loginDevice(const std::string& ip, const unsigned int& port, const std::string& userName,
                     const std::string& password, const USERTYPE& scope) override;
    bool logoutDevice() override;
    bool keepAlive() override;
    CHandler* getHandler(HANDLERTYPE type) override;
    bool useConnection(const std::string& ip, const unsigned int& port, const std::string& deviceId,
                       const std::string& token, const std::string& cookie) override;

    /** What requests name the session by: the low 32 bits of the device manager's address. */
    static unsigned int sessionKey(const CDeviceManagerImpl* p);

    /**
     * Whether an answer is one that a session was over for, which is open again now: by the credentials that
     * were given for that; without them false, and nothing is sent.
     */
    bool opensAgain(const ovra::tessel::Answer& refused);

    /** Sends a request by the session key of a device manager, which may be null. */
    static ovra::tessel::Answer send(const CDeviceManagerImpl* deviceManager, RestRequest& request,
                                     REST_REQUEST_MODE_E mode, const std::string& url);

private:
    /** What the registry knows of this device manager. */
    enum class Registration : unsigned int
    {
        NONE,
        IN_FORCE,
        REFUSED ///< the key is another one's: nothing may be sent by it
    };

    CHandler* handlerOf(HANDLERTYPE type);

    /** Makes a session the one that requests are sent on; false, and nothing changed, when it is refused. */
    bool adopt(const std::string& ip, unsigned int port, const std::string& deviceId,
               const std::string& token, const std::string& cookie, bool loggedIn);

    static pthread_mutex_t m_mutex; ///< guards initial and uninitial
    static int iniCnt;              ///< live instances

    std::string m_ip;
    unsigned int m_port = 0;
    Registration m_registration = Registration::NONE; ///< in the hole behind the port, where it moves nothing
    std::string m_token;
    std::string m_cookie;
    std::string m_deviceId;
    CLunHandlerImpl* m_pLunHandler = nullptr;
    CLunGroupHandlerImpl* m_pLunGroupHandler = nullptr;
    CIscsiInitiatorHandlerImpl* m_pIscsiInitiatorHandler = nullptr;
    CHostHandlerImpl* m_pHostHandler = nullptr;
    CHostGroupHandlerImpl* m_pHostGroupHandler = nullptr;
    CMappingViewHandlerImpl* m_pMappingViewHandler = nullptr;
    CDiskAttachHandlerImpl* m_pDiskAttachHandler = nullptr;
    CSnapshotHandlerImpl* m_pSnapshotHandler = nullptr;
    CFCInitiatorHandlerImpl* m_pFCInitiatorHandler = nullptr;
    CEthPortHandlerImpl* m_pEthPortHandler = nullptr;
    CFCPortHandlerImpl* m_pFCPortHandler = nullptr;
    CFCoEPortHandlerImpl* m_pFCoEPortHandler = nullptr;
    CDiskScannerHandlerImpl* m_pDiskScannerHandler = nullptr;
};

#endif
