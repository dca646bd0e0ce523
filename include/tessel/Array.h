#ifndef TESSEL_ARRAY_H
#define TESSEL_ARRAY_H

/** @file
 * One array as a value with a scope: session, handlers, pages. Header only; it adds no behaviour of its own.
 */

#include <tessel/Faces.h>
#include <tessel/Version.h>

#include <memory>
#include <string>
#include <utility>

namespace ovra {
namespace tessel {

/**
 * Owns a device manager and its session: the session that it opened ends with it, and the device manager is
 * released.
 *
 * @code
 * Array array;
 * array.login("192.0.2.7", 8088, "admin", password);
 * for (const LunMO& lun : array.luns().ofHost(hostID)) { ... }
 * @endcode
 *
 * Can be moved, not copied; one that was moved from can be destroyed and assigned to alone. One thread at a
 * time uses it and what it hands out; several objects, of one array too, are independent of each other.
 */
class Array
{
public:
    /**
     * Makes a device manager; nothing is sent.
     * @param retryTimes,retrySleepMicroSeconds as in CDeviceManager::getInstance: how often a new object
     * that cannot be read yet is read again, and the pause before.
     */
    explicit Array(unsigned int retryTimes = 10, unsigned int retrySleepMicroSeconds = 500000)
        : m_manager(CDeviceManager::getInstance(retryTimes, retrySleepMicroSeconds),
                    &CDeviceManager::releaseInstance)
    {
    }
    /** Uses a device manager that others release, one of a test say. @param manager outlives this object. */
    explicit Array(CDeviceManager& manager) : m_manager(&manager, [](CDeviceManager*) {}) {}
    /** Ends the session if login opened it; a failure is in the run log. */
    ~Array() { logout(); }
    /** Takes over manager and session. @param other can be destroyed and assigned to from now on. */
    Array(Array&& other) noexcept : m_manager(std::move(other.m_manager)), m_loggedIn(other.m_loggedIn)
    {
        other.m_loggedIn = false;
    }
    /** Ends what this object has, and takes over manager and session. @param other as above. @return this. */
    Array& operator=(Array&& other) noexcept
    {
        Array taken(std::move(other));
        std::swap(m_manager, taken.m_manager);
        std::swap(m_loggedIn, taken.m_loggedIn);
        return *this;
    }

    /**
     * Opens a session, which ends with this object; one that login opened before is ended first.
     * @param ip,port,userName,password,scope as in CDeviceManager::loginDevice.
     * @throws OvraAPIException when there is no session; the run log has the reason.
     */
    void login(const std::string& ip, unsigned int port, const std::string& userName,
               const std::string& password, USERTYPE scope = USERTYPE_LOCAL)
    {
        logout();
        m_loggedIn = m_manager->loginDevice(ip, port, userName, password, scope);
        if (!m_loggedIn) {
            throw OvraAPIException("no login to " + ip + " port " + std::to_string(port) + " as " + userName +
                                   ": the last error line of the run log has the reason! login");
        }
    }
    /**
     * Adopts a session opened elsewhere, which stays open; one that login opened before is ended first.
     * @param ip,port,deviceId,token,cookie as in CDeviceManager::useConnection.
     * @throws OvraAPIException when one of them cannot be used; the run log says which.
     */
    void adopt(const std::string& ip, unsigned int port, const std::string& deviceId,
               const std::string& token, const std::string& cookie)
    {
        logout();
        if (!m_manager->useConnection(ip, port, deviceId, token, cookie)) {
            throw OvraAPIException(
                "the session on " + ip + " port " + std::to_string(port) +
                " cannot be adopted: the last error line of the run log has the reason! adopt");
        }
    }
    /**
     * Ends the session that login opened. Needed only by who wants to know whether that worked.
     * @return false when the array did not end it: it then ends by its idle time-out. True when there was
     * none.
     */
    bool logout() noexcept
    {
        const bool open = m_loggedIn;
        m_loggedIn = false;
        return !open || m_manager->logoutDevice();
    }
    /** As CDeviceManager::keepAlive. @return as it. */
    bool keepAlive() { return m_manager->keepAlive(); }

    /** @return the device manager, for what takes one. */
    CDeviceManager& manager() const { return *m_manager; }
    /** As handlerOf: handler<CLunHandler>(). @return the handler. */
    template <typename Interface>
    Interface& handler() const
    {
        return handlerOf<Interface>(*m_manager);
    }

    /** @return LUNs. */
    Luns luns() const { return Luns(handler<CLunHandler>()); }
    /** @return snapshots. */
    Snapshots snapshots() const { return Snapshots(handler<CSnapshotHandler>()); }
    /** @return LUN groups. */
    LunGroups lunGroups() const { return LunGroups(handler<CLunGroupHandler>()); }
    /** @return hosts. */
    Hosts hosts() const { return Hosts(handler<CHostHandler>()); }
    /** @return host groups. */
    HostGroups hostGroups() const { return HostGroups(handler<CHostGroupHandler>()); }
    /** @return mapping views. */
    MappingViews mappingViews() const { return MappingViews(handler<CMappingViewHandler>()); }
    /** @return iSCSI initiators. */
    IscsiInitiators iscsiInitiators() const { return IscsiInitiators(handler<CIscsiInitiatorHandler>()); }
    /** @return FC initiators. */
    FCInitiators fcInitiators() const { return FCInitiators(handler<CFCInitiatorHandler>()); }
    /** @return FC ports. */
    FCPorts fcPorts() const { return FCPorts(handler<CFCPortHandler>()); }
    /** @return FCoE ports. */
    FCoEPorts fcoePorts() const { return FCoEPorts(handler<CFCoEPortHandler>()); }
    /** @return Ethernet ports. */
    ETHPorts ethPorts() const { return ETHPorts(handler<CETHPortHandler>()); }
    /** @return the attach workflow. */
    DiskAttach diskAttach() const { return DiskAttach(handler<CDiskAttachHandler>()); }
    /** @return the disks of this host. */
    DiskScanner diskScanner() const { return DiskScanner(handler<CDiskScannerHandler>()); }

private:
    std::unique_ptr<CDeviceManager, void (*)(CDeviceManager*)> m_manager;
    bool m_loggedIn = false;
};

} // namespace tessel
} // namespace ovra

#endif
