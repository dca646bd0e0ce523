#include "graph/ArrayWalk.h"

#include "disk/Initiator.h"
#include "objects/Listing.h"

namespace tesselctl {
namespace {

template <class Record>
Node node(Layer layer, const char* type, const Record& record)
{
    return {layer, type, record.ID, record.NAME};
}

} // namespace

size_t ArrayWalk::fromInitiator(const std::string& id, Members members)
{
    std::string host;
    size_t start = 0;
    const auto add = [&](const char* type, const auto& initiator) {
        host = initiator.PARENTID;
        start = m_graph.add(node(Layer::INITIATOR, type, initiator));
    };
    if (isIscsiName(id)) {
        add("initiator", mustRead(m_session, "iSCSI initiator", id, [&](const std::string& wanted) {
                return m_session.handler<CIscsiInitiatorHandler>().getIscsiInitiator(wanted);
            }));
    } else {
        add("FC initiator", mustRead(m_session, "FC initiator", id, [&](const std::string& wanted) {
                return m_session.handler<CFCInitiatorHandler>().getFCInitiator(wanted);
            }));
    }
    if (!host.empty()) {
        m_graph.link(start, fromHost(host, members));
    }
    return start;
}

size_t ArrayWalk::fromHost(const std::string& id, Members members)
{
    const HostMO host = mustRead(m_session, "host", id, [&](const std::string& wanted) {
        return m_session.handler<CHostHandler>().getHost(wanted);
    });
    const size_t start = m_graph.add(node(Layer::HOST, "host", host));
    for (const auto& group : listed(m_session, "host group", &CHostGroupHandler::getHostGroupByHost, id)) {
        const size_t hostGroup = m_graph.add(node(Layer::HOST_GROUP, "host group", group));
        m_graph.link(start, hostGroup);
        onFromHostGroup(hostGroup, members);
    }
    return start;
}

void ArrayWalk::onFromHostGroup(size_t hostGroup, Members members)
{
    const std::string id = m_graph.nodes()[hostGroup].id;
    for (const auto& found :
         listed(m_session, "mapping view", &CMappingViewHandler::getMappingViewByHostGroup, id)) {
        const size_t view = m_graph.add(node(Layer::VIEW, "view", found));
        m_graph.link(hostGroup, view);
        const LunGroupMO group = m_session.handler<CLunGroupHandler>().getLunGroupByMappingView(found.ID);
        if (group.ID.empty()) {
            continue;
        }
        const size_t lunGroup = m_graph.add(node(Layer::LUN_GROUP, "LUN group", group));
        m_graph.link(view, lunGroup);
        if (members == Members::READ) {
            addMembers(lunGroup);
        }
    }
}

void ArrayWalk::addMembers(size_t lunGroup)
{
    const std::string id = m_graph.nodes()[lunGroup].id;
    for (const auto& lun : listed(m_session, "LUN", &CLunHandler::getLunByLunGroup, id)) {
        m_graph.link(lunGroup, m_graph.add(node(Layer::UNIT, "LUN", lun)));
    }
    for (const auto& snapshot : listed(m_session, "snapshot", &CSnapshotHandler::getSnapshotByLunGroup, id)) {
        m_graph.link(lunGroup, m_graph.add(node(Layer::UNIT, "snapshot", snapshot)));
    }
}

size_t ArrayWalk::fromUnit(const Attachable& kind, const std::string& id)
{
    const size_t start = m_graph.add({Layer::UNIT, kind.title, id, kind.name(m_session, id)});
    for (const auto& group : kind.groups(m_session, id)) {
        const size_t lunGroup = m_graph.add(node(Layer::LUN_GROUP, "LUN group", group));
        m_graph.link(start, lunGroup);
        backFromLunGroup(lunGroup);
    }
    return start;
}

void ArrayWalk::backFromLunGroup(size_t lunGroup)
{
    const std::string id = m_graph.nodes()[lunGroup].id;
    for (const auto& found :
         listed(m_session, "mapping view", &CMappingViewHandler::getMappingViewByLunGroup, id)) {
        const size_t view = m_graph.add(node(Layer::VIEW, "view", found));
        m_graph.link(lunGroup, view);
        const HostGroupMO group = m_session.handler<CHostGroupHandler>().getHostGroupByMappingView(found.ID);
        if (!group.ID.empty()) {
            m_graph.link(view, m_graph.add(node(Layer::HOST_GROUP, "host group", group)));
        }
    }
}

} // namespace tesselctl
