#include "attach/Attachable.h"

#include "objects/Listing.h"
#include "objects/Membership.h"

namespace tesselctl {
namespace {

template <class Handler, class Record>
auto field(const char* title, Record (Handler::*get)(const std::string&), std::string Record::*member)
{
    return [=](Session& session, const std::string& id) {
        const auto read = [&](const std::string& wanted) {
            return (session.handler<Handler>().*get)(wanted);
        };
        return mustRead(session, title, id, read).*member;
    };
}

/** list(owner, query) asked for the object alone. */
template <class Handler, class Record, class Query>
auto listedBy(std::vector<Record> (Handler::*list)(const std::string&, Query&))
{
    return [=](Session& session, const std::string& id, const std::string& owner) {
        return lists(session, list, owner, id);
    };
}

auto groupsBy(std::vector<LunGroupMO> (CLunGroupHandler::*list)(const std::string&, LunGroupQuery&))
{
    return [=](Session& session, const std::string& id) { return listed(session, "LUN group", list, id); };
}

auto leaveBy(void (CLunGroupHandler::*remove)(const std::string&, const std::string&))
{
    return [=](Session& session, const std::string& id, const std::string& group) {
        (session.handler<CLunGroupHandler>().*remove)(id, group);
    };
}

Attachable lun()
{
    return {"lun",
            "LUN",
            MO_LUN,
            &CDiskScannerHandler::scanLunAfterAttach,
            &CDiskScannerHandler::scanLunBeforeDetach,
            field("LUN", &CLunHandler::getLun, &LunMO::WWN),
            field("LUN", &CLunHandler::getLun, &LunMO::NAME),
            listedBy(&CLunHandler::getLunByHost),
            groupsBy(&CLunGroupHandler::getLunGroupByLun),
            leaveBy(&CLunGroupHandler::removeLunFromLunGroup)};
}

Attachable snapshot()
{
    return {"snapshot",
            "snapshot",
            MO_SNAPSHOT,
            &CDiskScannerHandler::scanSnapshotAfterAttach,
            &CDiskScannerHandler::scanSnapshotBeforeDetach,
            field("snapshot", &CSnapshotHandler::getSnapshot, &SnapshotMO::WWN),
            field("snapshot", &CSnapshotHandler::getSnapshot, &SnapshotMO::NAME),
            listedBy(&CSnapshotHandler::getSnapshotByHost),
            groupsBy(&CLunGroupHandler::getLunGroupBySnapshot),
            leaveBy(&CLunGroupHandler::removeSnapshotFromLunGroup)};
}

} // namespace

const std::vector<Attachable>& attachables()
{
    static const std::vector<Attachable> both = {lun(), snapshot()};
    return both;
}

Commands forEachAttachable(const std::string& verb, const std::string& summary,
                           const std::vector<Option>& options, void (*run)(Context&, const Attachable&))
{
    Commands commands;
    for (const auto& object : attachables()) {
        commands.push_back({{verb, object.word},
                            summary + " a " + object.title,
                            {object.idArgument()},
                            options,
                            {},
                            [&object, run](Context& context) { run(context, object); }});
    }
    return commands;
}

} // namespace tesselctl
