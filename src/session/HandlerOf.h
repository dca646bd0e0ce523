#ifndef SESSION_HANDLEROF_H
#define SESSION_HANDLEROF_H

class CDeviceManagerImpl;

namespace ovra::tessel {

/** What every handler implementation is beside its interface: it knows the device manager that made it. */
template <class Interface>
class HandlerOf : public Interface
{
public:
    HandlerOf() = default;
    explicit HandlerOf(CDeviceManagerImpl* deviceManager) : m_pDeviceManager(deviceManager) {}
    ~HandlerOf() override { m_pDeviceManager = nullptr; }

protected:
    CDeviceManagerImpl* m_pDeviceManager = nullptr; ///< not owned
};

} // namespace ovra::tessel

#endif
