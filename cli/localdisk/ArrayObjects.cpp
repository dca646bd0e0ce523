#include "localdisk/ArrayObjects.h"

#include "attach/Patience.h"
#include "objects/Listing.h"
#include "text/Words.h"

namespace tesselctl {
namespace {

struct Unit
{
    std::string id;
    std::string wwn;
    std::string name;
};

template <class Record>
Unit unitOf(const Record& record)
{
    return {record.ID, lowered(record.WWN), record.NAME};
}

} // namespace

/** Where objects of one kind are read. */
struct ArrayObjects::Source
{
    const Attachable* kind;
    std::function<std::vector<Unit>(Session&, const std::string& host)> shownTo;
    std::function<Unit(Session&, const std::string& id)> read;

    template <class Handler, class Record, class Query>
    Source(const Attachable& of, std::vector<Record> (Handler::*list)(const std::string&, Query&),
           Record (Handler::*get)(const std::string&))
        : kind(&of), shownTo([=, &of](Session& session, const std::string& host) {
              std::vector<Unit> units;
              for (const Record& record : listed(session, of.title.c_str(), list, host)) {
                  units.push_back(unitOf(record));
              }
              return units;
          }),
          read([=](Session& session, const std::string& id) {
              return unitOf((session.handler<Handler>().*get)(id));
          })
    {
    }
};

const std::vector<ArrayObjects::Source>& ArrayObjects::sources()
{
    static const std::vector<Source> both = {
        {attachables()[0], &CLunHandler::getLunByHost, &CLunHandler::getLun},
        {attachables()[1], &CSnapshotHandler::getSnapshotByHost, &CSnapshotHandler::getSnapshot}};
    return both;
}

void ArrayObjects::readShownTo(const ovra::tessel::HostInitiator& initiator)
{
    std::string host;
    try {
        host = patiently([&] { return hostIdOf(m_session, initiator); });
    } catch (const NotFound&) {
        return; // this host shows itself to other arrays by it
    }
    if (host.empty() || !m_hosts.insert(host).second) {
        return;
    }
    for (const Source& source : sources()) {
        for (const Unit& unit : patiently([&] { return source.shownTo(m_session, host); })) {
            m_objects[{unit.wwn, unit.id}] = {source.kind, unit.name, true};
        }
    }
}

bool ArrayObjects::isShown(const ovra::disk::DiskIdentity& identity) const
{
    return m_objects.count({identity.wwn, identity.lunId}) != 0;
}

const ArrayObject& ArrayObjects::find(const ovra::disk::DiskIdentity& identity)
{
    const Identity key(identity.wwn, identity.lunId);
    const auto found = m_objects.find(key);
    return found != m_objects.end() ? found->second : m_objects[key] = ask(identity);
}

ArrayObject ArrayObjects::ask(const ovra::disk::DiskIdentity& identity)
{
    for (const Source& source : sources()) {
        try {
            const Unit unit = patiently([&] { return source.read(m_session, identity.lunId); });
            if (!identity.wwn.empty() && unit.wwn == identity.wwn && unit.id == identity.lunId) {
                return {source.kind, unit.name, false};
            }
        } catch (const OvraAPIExceptionWithErrCode& error) {
            const auto readId = [&](const std::string& id) { return source.read(m_session, id).id; };
            if (m_notFound.count(error.getErrCode()) == 0 &&
                !saysNotFound(m_session, readId, identity.lunId, error.getErrCode())) {
                throw;
            }
            m_notFound.insert(error.getErrCode());
        }
    }
    return {};
}

std::string titleOf(const ovra::tessel::HostInitiator& initiator)
{
    return initiator.isFC ? "FC initiator" : "iSCSI initiator";
}

std::string hostIdOf(Session& session, const ovra::tessel::HostInitiator& initiator)
{
    const auto parentBy = [&](auto get) {
        return mustRead(session, titleOf(initiator), initiator.id, get).PARENTID;
    };
    return initiator.isFC ? parentBy([&](const std::string& id) {
        return session.handler<CFCInitiatorHandler>().getFCInitiator(id);
    })
                          : parentBy([&](const std::string& id) {
                                return session.handler<CIscsiInitiatorHandler>().getIscsiInitiator(id);
                            });
}

} // namespace tesselctl
