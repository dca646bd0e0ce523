#include "job/Showing.h"

namespace ovra::tessel {
namespace {

constexpr unsigned LOOKED_FOR = 4; ///< names of a host group that are looked for before one is made

/** A record of a name; the description is for the administrator who meets the object. */
template <class Record>
Record wanted(const std::string& name)
{
    Record record;
    record.NAME = name;
    record.DESCRIPTION = "Shows disks to one host; made by the Tessel API";
    return record;
}

/** Takes an object away that nobody needs; one that the array does not give up is in use, and stays. */
template <class Delete>
void dropQuietly(const Delete& dropIt)
{
    try {
        dropIt();
    } catch (const OvraAPIException&) { // the run log has it
    }
}

} // namespace

AccessResult Showing::run()
{
    m_result.hostID = m_map.hostID();
    m_result.wasVisible = !m_result.hostID.empty() && m_map.isVisible(m_result.hostID);
    m_result.isVisible = m_result.wasVisible;
    if (m_result.wasVisible) {
        m_map.tellWhatShows(m_result);
        return m_result;
    }
    if (!m_map.exists()) {
        throw OvraAPIException("the array has no such object: " + m_object.id + "! ensureVisible");
    }
    if (m_result.hostID.empty()) {
        makeHost();
    }
    show();
    return m_result;
}

void Showing::show()
{
    const AccessNames names = AccessNames::ofHost(m_result.hostID);
    Tries tries(m_options);
    do {
        const HostGroupMO hosts = hostGroup(names);
        const MappingViewMO binding = view(hosts, names);
        const LunGroupMO luns = lunGroup(binding, names);
        m_result.own = {named(MO_LUNGROUP, luns), named(MO_MAPPINGVIEW, binding), named(MO_HOSTGROUP, hosts)};
        for (int i = 0; i < 2 && !m_result.isVisible; ++i) { // most likely the array was busy once
            add(luns);
            m_result.isVisible = m_map.isVisible(m_result.hostID);
        }
    } while (!m_result.isVisible && tries.another());
    if (!m_result.isVisible) {
        throw OvraAPIException("the host does not see the object; the run log says why! ensureVisible");
    }
}

/** Adding tells no failure: the caller reads back. */
void Showing::add(const LunGroupMO& group) const
{
    const LunGroups groups = m_map.array().lunGroups();
    if (m_object.type == MO_LUN) {
        groups->addLunToLunGroup(m_object.id, group.ID);
    } else {
        groups->addSnapshotToLunGroup(m_object.id, group.ID);
    }
}

template <class Record>
Record Showing::made(const Making<Record>& making)
{
    return Maker<Record>(making, m_options, m_result.made).make();
}

void Showing::makeHost()
{
    const auto find = [this](unsigned) {
        HostMO host;
        host.ID = m_map.hostID();
        return host;
    };
    m_result.hostID =
        made<HostMO>(
            {MO_HOST, AccessNames::ofInitiator(m_initiator.id), find,
             [this](const std::string& name) {
                 HostMO host;
                 host.NAME = name;
                 host.IP = m_options.hostIP;
                 host.OPERATIONSYSTEM = m_options.operatingSystem;
                 return m_map.array().hosts().createHost(host);
             },
             [&](const HostMO& host) {
                 if (find(0).ID.empty()) { // an array may let a second binding take the first one's place
                     m_map.bindInitiator(host.ID);
                 }
             },
             [](const HostMO&) {}}) // no operation deletes a host
            .ID;
}

HostGroupMO Showing::hostGroup(const AccessNames& names)
{
    const HostGroups groups = m_map.array().hostGroups();
    const std::string& host = m_result.hostID;
    const auto find = [&](unsigned index) { return m_map.hostGroup(host, names, 0, index); };
    HostGroupMO found = find(0);
    if (found.ID.empty() && m_map.isInHostGroup(host)) {
        found = m_map.hostGroup(host, names, 1, LOOKED_FOR - 1);
    }
    if (!found.ID.empty()) {
        return found;
    }
    return made<HostGroupMO>(
        {MO_HOSTGROUP, names, find,
         [&](const std::string& name) { return groups.createHostGroup(wanted<HostGroupMO>(name)); },
         [&](const HostGroupMO& group) { groups->addHostToHostGroup(host, group.ID); },
         [&](const HostGroupMO& group) {
             groups->removeHostFromHostGroup(host, group.ID);
             dropQuietly([&] { groups->deleteHostGroup(group.ID); });
         }});
}

MappingViewMO Showing::view(const HostGroupMO& group, const AccessNames& names)
{
    const MappingViews views = m_map.array().mappingViews();
    const auto find = [&](unsigned) { return m_map.view(group.ID, names); };
    MappingViewMO found = find(0);
    if (!found.ID.empty()) {
        return found;
    }
    return made<MappingViewMO>(
        {MO_MAPPINGVIEW, names, find,
         [&](const std::string& name) { return views.createMappingView(wanted<MappingViewMO>(name)); },
         [&](const MappingViewMO& view) { views->addHostGroupToMappingView(group.ID, view.ID); },
         [&](const MappingViewMO& view) {
             dropQuietly([&] { views->removeHostGroupFromMappingView(group.ID, view.ID); });
             dropQuietly([&] { views->deleteMappingView(view.ID); });
         }});
}

LunGroupMO Showing::lunGroup(const MappingViewMO& view, const AccessNames& names)
{
    const LunGroups groups = m_map.array().lunGroups();
    const auto find = [&](unsigned) { return m_map.lunGroup(view.ID); };
    LunGroupMO found = find(0);
    if (!found.ID.empty()) {
        return found;
    }
    return made<LunGroupMO>(
        {MO_LUNGROUP, names, find,
         [&](const std::string& name) { return groups.createLunGroup(wanted<LunGroupMO>(name)); },
         [&](const LunGroupMO& group) {
             m_map.array().mappingViews()->addLunGroupToMappingView(group.ID, view.ID);
         },
         [&](const LunGroupMO& group) { dropQuietly([&] { groups->deleteLunGroup(group.ID); }); }});
}

} // namespace ovra::tessel
