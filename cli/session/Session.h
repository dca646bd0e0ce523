#ifndef SESSION_SESSION_H
#define SESSION_SESSION_H

#include "kernel/Command.h"
#include "network/ArrayAddress.h"
#include "session/SignalExit.h"

#include <tessel/Tessel.h>

#include <memory>
#include <mutex>
#include <string>

namespace tesselctl {

/** The value of HANDLERTYPE that stands for a handler interface. */
template <class Handler>
struct TypeOf;
// clang-format off
template <> struct TypeOf<CLunHandler> { static constexpr HANDLERTYPE value = LUN_HANDLER; };
template <> struct TypeOf<CLunGroupHandler> { static constexpr HANDLERTYPE value = LUNGROUP_HANDLER; };
template <> struct TypeOf<CSnapshotHandler> { static constexpr HANDLERTYPE value = SNAPSHOT_HANDLER; };
template <> struct TypeOf<CHostHandler> { static constexpr HANDLERTYPE value = HOST_HANDLER; };
template <> struct TypeOf<CHostGroupHandler> { static constexpr HANDLERTYPE value = HOSTGROUP_HANDLER; };
template <> struct TypeOf<CMappingViewHandler> { static constexpr HANDLERTYPE value = MAPPINGVIEW_HANDLER; };
template <> struct TypeOf<CIscsiInitiatorHandler> { static constexpr HANDLERTYPE value = ISCSIINITIATOR_HANDLER; };
template <> struct TypeOf<CFCInitiatorHandler> { static constexpr HANDLERTYPE value = FCINITIATOR_HANDLER; };
template <> struct TypeOf<CFCPortHandler> { static constexpr HANDLERTYPE value = FCPORT_HANDLER; };
template <> struct TypeOf<CFCoEPortHandler> { static constexpr HANDLERTYPE value = FCOEPORT_HANDLER; };
template <> struct TypeOf<CETHPortHandler> { static constexpr HANDLERTYPE value = ETHPORT_HANDLER; };
template <> struct TypeOf<CDiskAttachHandler> { static constexpr HANDLERTYPE value = DISKATTACH_HANDLER; };
template <> struct TypeOf<CDiskScannerHandler> { static constexpr HANDLERTYPE value = DISKSCANNER_HANDLER; };
// clang-format on

/** One open session; one that logged in logs out at its end and before a signal ends the process. */
class Session
{
public:
    /** Logs in, or adopts the session that the options name. Throws Failure or UsageError. */
    static std::unique_ptr<Session> open(const Values& values);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    template <class Handler>
    Handler& handler()
    {
        return static_cast<Handler&>(*m_manager->getHandler(TypeOf<Handler>::value));
    }

    CDeviceManager& manager() { return *m_manager; }
    const ArrayAddress& address() const { return m_address; }
    bool isAdopted() const { return m_adopted; }
    bool keepAlive() { return m_manager->keepAlive(); }
    /** Logs out at once; false when the array refused. An adopted session stays open. */
    bool close();

private:
    Session(const ArrayAddress& address, bool adopted);
    void logIn(const Values& values);
    void adopt(const Values& values);

    struct Release
    {
        void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
    };

    std::unique_ptr<CDeviceManager, Release> m_manager;
    ArrayAddress m_address;
    bool m_adopted;
    bool m_open = false;
    std::timed_mutex m_change; ///< held while the session is opened or closed
    std::unique_ptr<SignalExit> m_signalExit;
};

/** The options of the connection, for globalOptions(). */
std::vector<Option> connectionOptions();

/** Hands the trust and time-out options over to the REST library; before the first request. */
void applyTransportOptions(const Values& values);

} // namespace tesselctl

#endif
