#include "job/AccessMap.h"

#include "job/Tries.h"
#include "observer/Observation.h"

namespace ovra::tessel {
namespace {

/** The range by which the array is asked for one object of a list, as an attach does. */
constexpr unsigned long ANY_NUMBER = 65535;

/** Of records with one of the names, that of the first name; an empty one where there is none. */
template <class Record, class Usable>
Record firstNamed(const std::vector<Record>& records, const AccessNames& names, const Usable& isUsable)
{
    Record first;
    for (const Record& record : records) {
        if (names.indexOf(record.NAME) < names.indexOf(first.NAME) && isUsable(record)) {
            first = record;
        }
    }
    return first;
}

} // namespace

template <class Read>
auto AccessMap::read(const Read& call) const -> decltype(call())
{
    return whileBusy(m_options, call);
}

std::string AccessMap::hostID() const
{
    const auto hostOf = [this](const auto& initiator) {
        if (initiator.ID.empty()) {
            throw OvraAPIException("the array does not know the initiator " + m_initiator.id + "!");
        }
        return initiator.PARENTID;
    };
    std::string host = read([&] {
        return m_initiator.isFC ? hostOf(m_array.fcInitiators()->getFCInitiator(m_initiator.id))
                                : hostOf(m_array.iscsiInitiators()->getIscsiInitiator(m_initiator.id));
    });
    Observation::jobsName(kinds::HOST, host);
    return host;
}

bool AccessMap::exists() const
{
    return read([&] {
        return !(m_object.type == MO_LUN ? m_array.luns()->getLun(m_object.id).ID
                                         : m_array.snapshots()->getSnapshot(m_object.id).ID)
                    .empty();
    });
}

bool AccessMap::isVisible(const std::string& hostID) const
{
    return read([&] {
        if (m_object.type == MO_LUN) {
            LunQuery query;
            query.filter.ID = m_object.id;
            query.count = ANY_NUMBER;
            return hasId(m_array.luns()->getLunByHost(hostID, query), m_object.id);
        }
        SnapshotQuery query;
        query.filter.ID = m_object.id;
        query.count = ANY_NUMBER;
        return hasId(m_array.snapshots()->getSnapshotByHost(hostID, query), m_object.id);
    });
}

bool AccessMap::isInHostGroup(const std::string& hostID) const
{
    return read([&] { return m_array.hosts()->getHost(hostID).ISADD2HOSTGROUP == 1; });
}

HostGroupMO AccessMap::hostGroup(const std::string& hostID, const AccessNames& names, unsigned from,
                                 unsigned to) const
{
    HostGroupMO found;
    for (unsigned i = from; i <= to && found.ID.empty(); ++i) {
        HostGroupQuery query; // by name: a host may be in hundreds of groups
        query.filter.NAME = names.at(i);
        found = firstNamed(read([&] { return m_array.hostGroups()->getHostGroupByHost(hostID, query); }),
                           names, [](const HostGroupMO&) { return true; });
    }
    return found;
}

MappingViewMO AccessMap::view(const std::string& hostGroupID, const AccessNames& names) const
{
    const auto isUsable = [&](const MappingViewMO& view) {
        const LunGroupMO bound = lunGroup(view.ID);
        return bound.ID.empty() || names.has(bound.NAME);
    };
    MappingViewQuery plain;
    plain.filter.NAME = names.at(0);
    const MappingViewMO found = firstNamed(
        read([&] { return m_array.mappingViews()->getMappingViewByHostGroup(hostGroupID, plain); }), names,
        isUsable);
    return !found.ID.empty()
               ? found
               : firstNamed(read([&] { return m_array.mappingViews().ofHostGroup(hostGroupID).all(); }),
                            names, isUsable);
}

LunGroupMO AccessMap::lunGroup(const std::string& viewID) const
{
    return read([&] { return m_array.lunGroups()->getLunGroupByMappingView(viewID); });
}

std::vector<LunGroupMO> AccessMap::lunGroupsNamed(const std::string& name) const
{
    LunGroupQuery query;
    query.filter.NAME = name;
    return read([&] {
        return m_object.type == MO_LUN ? m_array.lunGroups()->getLunGroupByLun(m_object.id, query)
                                       : m_array.lunGroups()->getLunGroupBySnapshot(m_object.id, query);
    });
}

std::vector<LunGroupMO> AccessMap::lunGroups() const
{
    return read([&] {
        return m_object.type == MO_LUN ? m_array.lunGroups().ofLun(m_object.id).all()
                                       : m_array.lunGroups().ofSnapshot(m_object.id).all();
    });
}

std::vector<AccessPath> AccessMap::paths(const LunGroupMO& lunGroup, const std::string& hostID) const
{
    std::vector<AccessPath> paths;
    const auto views = read([&] { return m_array.mappingViews().ofLunGroup(lunGroup.ID).all(); });
    for (const MappingViewMO& view : views) {
        const auto group = read([&] { return m_array.hostGroups()->getHostGroupByMappingView(view.ID); });
        HostGroupQuery query;
        query.filter.ID = group.ID;
        if (!group.ID.empty() &&
            hasId(read([&] { return m_array.hostGroups()->getHostGroupByHost(hostID, query); }), group.ID)) {
            paths.push_back(
                {named(MO_LUNGROUP, lunGroup), named(MO_MAPPINGVIEW, view), named(MO_HOSTGROUP, group)});
        }
    }
    return paths;
}

std::vector<AccessPath> AccessMap::pathsToOthers(const LunGroupMO& lunGroup, const AccessNames& names) const
{
    std::vector<AccessPath> paths;
    MappingViewQuery query; // in one request: nearly always there is one view
    query.count = ANY_NUMBER;
    const auto views =
        read([&] { return m_array.mappingViews()->getMappingViewByLunGroup(lunGroup.ID, query); });
    for (const MappingViewMO& view : views) {
        if (names.has(view.NAME)) { // spares a request in the usual case
            continue;
        }
        const auto group = read([&] { return m_array.hostGroups()->getHostGroupByMappingView(view.ID); });
        if (!group.ID.empty() && !names.has(group.NAME)) {
            paths.push_back(
                {named(MO_LUNGROUP, lunGroup), named(MO_MAPPINGVIEW, view), named(MO_HOSTGROUP, group)});
        }
    }
    return paths;
}

void AccessMap::tellWhatShows(AccessResult& result) const
{
    const AccessNames names = AccessNames::ofHost(result.hostID);
    const auto own = lunGroupsNamed(names.at(0));
    if (!own.empty()) {
        result.own.lunGroup = named(MO_LUNGROUP, own.front());
        return;
    }
    for (const LunGroupMO& group : lunGroups()) {
        for (const AccessPath& path : paths(group, result.hostID)) {
            if (names.has(group.NAME)) {
                result.own = path;
            } else {
                result.others.push_back(path);
            }
        }
    }
}

void AccessMap::bindInitiator(const std::string& hostID) const
{
    if (m_initiator.isFC) {
        m_array.fcInitiators()->addFCInitiatorToHost(m_initiator.id, hostID);
    } else {
        m_array.iscsiInitiators()->addIscsiInitiatorToHost(m_initiator.id, hostID);
    }
}

} // namespace ovra::tessel
