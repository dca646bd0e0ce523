#ifndef SESSION_SESSION_H
#define SESSION_SESSION_H

#include "kernel/Command.h"
#include "network/ArrayAddress.h"
#include "session/SignalExit.h"

#include <tessel/Handlers.h>
#include <tessel/Tessel.h>

#include <memory>
#include <mutex>
#include <string>

namespace tesselctl {

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
        return ovra::tessel::handlerOf<Handler>(*m_manager);
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
