#include "session/ManagerOptions.h"

#include "session/CallsAtWork.h"
#include "session/LastFailure.h"
#include "session/RestAdditions.h"

#include <tessel/Transport.h>

#include <atomic>
#include <map>
#include <mutex>

namespace ovra::tessel {

namespace {

struct All
{
    std::mutex mutex;
    std::map<const CDeviceManager*, std::shared_ptr<const ManagerOptions>> byManager;
};

All& all()
{
    static All* const instance = new All; // never deleted: device managers may outlive static destruction
    return *instance;
}

std::atomic<unsigned> g_count{0}; ///< of device managers with options: without any nothing is locked

} // namespace

std::shared_ptr<const ManagerOptions> optionsOf(const CDeviceManager* manager)
{
    if (g_count == 0) {
        return nullptr;
    }
    const std::lock_guard<std::mutex> lock(all().mutex);
    const auto found = all().byManager.find(manager);
    return found == all().byManager.end() ? nullptr : found->second;
}

void changeOptions(const CDeviceManager& manager, const std::function<void(ManagerOptions&)>& change)
{
    const auto before = optionsOf(&manager);
    const auto options =
        before ? std::make_shared<ManagerOptions>(*before) : std::make_shared<ManagerOptions>();
    change(*options);
    const std::lock_guard<std::mutex> lock(all().mutex);
    all().byManager[&manager] = options;
    g_count = static_cast<unsigned>(all().byManager.size());
}

void forgetOptions(const CDeviceManager* manager)
{
    if (g_count != 0) {
        const std::lock_guard<std::mutex> lock(all().mutex);
        all().byManager.erase(manager);
        g_count = static_cast<unsigned>(all().byManager.size());
    }
}

OptionsInForce::OptionsInForce(const CDeviceManager* manager) : m_options(optionsOf(manager))
{
    if (!m_options) {
        return;
    }
    m_call.settings = m_options->transport.get();
    m_call.cancelDescriptor = m_options->cancelDescriptor;
    if (m_options->each.count() > 0) {
        m_call.until = endOf(m_options->each);
    }
    beginLimit(m_call);
}

OptionsInForce::~OptionsInForce()
{
    if (m_options) {
        endLimit(m_call);
    }
}

TransportOptions processTransport()
{
    const RestSettings settings = RestGetSettings != nullptr ? RestGetSettings() : RestSettings();
    TransportOptions options;
    options.caFile = settings.caFile;
    options.pinnedKey = settings.pinnedKey;
    options.insecure = settings.insecure;
    options.connectTimeoutSeconds = settings.connectTimeoutSeconds;
    options.timeoutSeconds = settings.timeoutSeconds;
    return options;
}

void setTransport(CDeviceManager& manager, const TransportOptions& options)
{
    if (RestSetCall == nullptr) {
        throw notedFailure(FailureKind::HOST,
                           "the REST library of this program knows no settings of one array! setTransport");
    }
    auto settings = std::make_shared<RestSettings>();
    settings->caFile = options.caFile;
    settings->pinnedKey = options.pinnedKey;
    settings->insecure = options.insecure;
    settings->connectTimeoutSeconds = options.connectTimeoutSeconds;
    settings->timeoutSeconds = options.timeoutSeconds;
    changeOptions(manager, [&](ManagerOptions& changed) { changed.transport = settings; });
}

} // namespace ovra::tessel
