#ifndef SESSION_MANAGEROPTIONS_H
#define SESSION_MANAGEROPTIONS_H

#include <ovra/rest/RestCall.h>
#include <tessel/Calls.h>

#include <functional>
#include <memory>

namespace ovra::tessel {

/** What a device manager was given beside the session; its own layout is fixed, so it stands here. */
struct ManagerOptions
{
    std::shared_ptr<const RestSettings> transport; ///< none: the process's
    std::chrono::milliseconds each{0};             ///< for one operation; 0: no limit
    int cancelDescriptor = -1;
    std::shared_ptr<const void> event; ///< keeps the descriptor open
    std::shared_ptr<const CredentialsSource> credentials;
    bool areCredentialsRefused = false; ///< by the array, since it took some, or others were set
};

/** Of a device manager; null when it was given nothing. Thread-safe; what is had stays as it is. */
std::shared_ptr<const ManagerOptions> optionsOf(const CDeviceManager* manager);

/** Changes them for the operations that begin from now on. */
void changeOptions(const CDeviceManager& manager, const std::function<void(ManagerOptions&)>& change);

/** Forgets them; for a device manager that goes. */
void forgetOptions(const CDeviceManager* manager);

/** What a device manager was given holds for the calls of this thread while this lives. */
class OptionsInForce
{
public:
    explicit OptionsInForce(const CDeviceManager* manager);
    ~OptionsInForce();
    OptionsInForce(const OptionsInForce&) = delete;
    OptionsInForce& operator=(const OptionsInForce&) = delete;

private:
    std::shared_ptr<const ManagerOptions> m_options;
    RestCall m_call;
};

} // namespace ovra::tessel

#endif
