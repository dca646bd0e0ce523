#include "model/Exposure.h"

#include "model/Associations.h"

#include <algorithm>
#include <array>
#include <utility>

namespace arraysim {
namespace {

constexpr std::array<Type, 2> EXPOSABLE{Type::LUN, Type::SNAPSHOT};
constexpr std::array<Type, 2> INITIATORS{Type::ISCSI_INITIATOR, Type::FC_INITIATOR};

/** How far a type stands from the LUNs on the way to the initiators; -1 where it is not on the way. */
int distance(Type type)
{
    switch (type) {
    case Type::LUN:
    case Type::SNAPSHOT:
        return 0;
    case Type::LUN_GROUP:
        return 1;
    case Type::MAPPING_VIEW:
        return 2;
    case Type::HOST_GROUP:
        return 3;
    case Type::HOST:
        return 4;
    case Type::ISCSI_INITIATOR:
    case Type::FC_INITIATOR:
        return 5;
    default:
        return -1;
    }
}

} // namespace

std::set<ObjectKey> exposedInitiators(const World& world, const ObjectKey& lunOrSnapshot)
{
    std::set<ObjectKey> found;
    if (!world.linked(lunOrSnapshot, Type::LUN_GROUP).empty()) {
        for (const Type type : INITIATORS) {
            const IdList ids = related(world, lunOrSnapshot, type);
            for (const auto& id : *ids) {
                found.insert({type, id});
            }
        }
    }
    return found;
}

ExposureWatch::ExposureWatch(World& world, ExposureObserver& observer) : m_world(world), m_observer(observer)
{
    m_world.observe(this);
}

ExposureWatch::~ExposureWatch()
{
    m_world.ignore(this);
}

void ExposureWatch::linkChanges(const ObjectKey& owner, const ObjectKey& member)
{
    const int ownerAt = distance(owner.first);
    const int memberAt = distance(member.first);
    if (ownerAt < 0 || memberAt < 0 || ownerAt == memberAt) {
        return;
    }
    const ObjectKey& near = ownerAt < memberAt ? owner : member;
    const auto note = [this](const ObjectKey& lun) {
        if (m_before.count(lun) == 0) {
            m_before.emplace(lun, exposedInitiators(m_world, lun));
        }
    };
    if (distance(near.first) == 0) {
        note(near);
        return;
    }
    for (const Type type : EXPOSABLE) {
        const IdList ids = related(m_world, near, type);
        for (const auto& id : *ids) {
            note({type, id});
        }
    }
}

void ExposureWatch::committed()
{
    const auto before = std::exchange(m_before, {});
    for (const auto& [lun, saw] : before) {
        const std::set<ObjectKey> sees = exposedInitiators(m_world, lun);
        for (const auto& initiator : saw) {
            if (sees.count(initiator) == 0) {
                m_observer.exposureChanged(lun, initiator, false);
            }
        }
        for (const auto& initiator : sees) {
            if (saw.count(initiator) == 0) {
                m_observer.exposureChanged(lun, initiator, true);
            }
        }
    }
}

} // namespace arraysim
