#ifndef SIMULATOR_MODEL_EXPOSURE_H
#define SIMULATOR_MODEL_EXPOSURE_H

#include "model/World.h"

#include <functional>
#include <set>

namespace arraysim {

/**
 * The initiators that see a LUN or snapshot: it is in a LUN group, that in a mapping view, that binds
 * a host group, that holds a host, and the initiator belongs to that host.
 */
std::set<ObjectKey> exposedInitiators(const World& world, const ObjectKey& lunOrSnapshot);

/** Is told, after the operation is kept, which LUNs and snapshots initiators began or ceased to see. */
class ExposureObserver
{
public:
    virtual ~ExposureObserver() = default;
    virtual void exposureChanged(const ObjectKey& lunOrSnapshot, const ObjectKey& initiator,
                                 bool appeared) = 0;
};

/** Turns changes of associations into changes of exposure. Looks only at what an association touches. */
class ExposureWatch : public LinkObserver
{
public:
    ExposureWatch(World& world, ExposureObserver& observer);
    ~ExposureWatch() override;
    ExposureWatch(const ExposureWatch&) = delete;
    ExposureWatch& operator=(const ExposureWatch&) = delete;

    void linkChanges(const ObjectKey& owner, const ObjectKey& member) override;
    void committed() override;
    void rolledBack() override { m_before.clear(); }

private:
    World& m_world;
    ExposureObserver& m_observer;
    std::map<ObjectKey, std::set<ObjectKey>> m_before;
};

} // namespace arraysim

#endif
