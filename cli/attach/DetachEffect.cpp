#include "attach/DetachEffect.h"

#include "objects/Listing.h"
#include "text/Display.h"
#include "text/Words.h"

#include <algorithm>

namespace tesselctl {
namespace {

/** An attach names what it makes by the time: "lungroup_1700000000". */
bool isMadeByAttach(const std::string& name, const std::string& prefix)
{
    return name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
           name.find_first_not_of("0123456789", prefix.size()) == std::string::npos;
}

template <class Record>
std::string label(const char* title, const Record& record)
{
    return std::string(title) + " " + record.ID + " (" + record.NAME + ")";
}

std::vector<LunGroupMO> groupsTowards(Session& session, const Attachable& object, const std::string& id,
                                      const std::vector<HostGroupMO>& hostGroups)
{
    std::vector<LunGroupMO> groups;
    for (const auto& hostGroup : hostGroups) {
        for (const auto& view :
             listed(session, "mapping view", &CMappingViewHandler::getMappingViewByHostGroup, hostGroup.ID)) {
            const LunGroupMO group = session.handler<CLunGroupHandler>().getLunGroupByMappingView(view.ID);
            const bool isKnown = std::any_of(groups.begin(), groups.end(),
                                             [&](const LunGroupMO& other) { return other.ID == group.ID; });
            if (!group.ID.empty() && !isKnown && object.isInGroup(session, id, group.ID)) {
                groups.push_back(group);
            }
        }
    }
    return groups;
}

/** The host groups on the views of a LUN group through which others than the host may see its members. */
std::vector<std::string> othersOn(Session& session, const std::string& lunGroup,
                                  const std::vector<HostGroupMO>& own)
{
    std::vector<std::string> others;
    for (const auto& view :
         listed(session, "mapping view", &CMappingViewHandler::getMappingViewByLunGroup, lunGroup)) {
        const HostGroupMO group = session.handler<CHostGroupHandler>().getHostGroupByMappingView(view.ID);
        const bool isOwn =
            std::any_of(own.begin(), own.end(), [&](const HostGroupMO& one) { return one.ID == group.ID; });
        if (!group.ID.empty() && !isOwn) {
            others.push_back(label("host group", group));
        } else if (isOwn && !isMadeByAttach(group.NAME, "hostgroup_")) {
            others.push_back(label("host group", group) + ", whose hosts the array does not tell");
        }
    }
    return others;
}

} // namespace

DetachEffect effectOfDetach(Session& session, const Attachable& object, const std::string& id,
                            const std::string& host)
{
    const auto own = host.empty()
                         ? std::vector<HostGroupMO>()
                         : listed(session, "host group", &CHostGroupHandler::getHostGroupByHost, host);
    DetachEffect effect;
    for (const auto& group :
         host.empty() ? object.groups(session, id) : groupsTowards(session, object, id, own)) {
        const bool isLast = session.handler<CLunGroupHandler>().getObjNOFromLunGroup(group.ID) == 1;
        effect.groups.push_back({group.ID, group.NAME, isLast});
        const auto others = host.empty() ? std::vector<std::string>() : othersOn(session, group.ID, own);
        effect.others.insert(effect.others.end(), others.begin(), others.end());
    }
    return effect;
}

void refuseSideEffects(const DetachEffect& effect, const std::string& object)
{
    std::vector<std::string> reasons;
    if (!effect.others.empty()) {
        reasons.push_back("other hosts may lose " + object + ": those of " +
                          joined(effect.others, ", and of "));
    }
    for (const auto& group : effect.groups) {
        if (group.isLeftEmpty && !isMadeByAttach(group.name, "lungroup_")) {
            reasons.push_back("LUN group " + group.id + " (" + group.name +
                              "), which no attach has made, would be empty and deleted");
        }
    }
    if (!reasons.empty()) {
        throw Failure(joined(reasons, "; ") + "; detach it all the same with --force");
    }
}

std::string tellEffect(Session& session, const DetachEffect& effect, Json::Value& result)
{
    std::string text;
    result["lunGroups"] = Json::Value(Json::arrayValue);
    for (const auto& group : effect.groups) {
        const bool isDeleted = group.isLeftEmpty && !isThere(session, {"LUN group", group.id});
        Json::Value entry(Json::objectValue);
        entry["id"] = group.id;
        entry["name"] = validUtf8(group.name);
        entry["deleted"] = isDeleted;
        result["lunGroups"].append(entry);
        text += "taken out of LUN group " + group.id + " (" + printable(group.name) + ")" +
                (isDeleted ? ", which was empty then and is deleted" : "") + "\n";
    }
    result["otherHostGroups"] = Json::Value(Json::arrayValue);
    for (const auto& other : effect.others) {
        result["otherHostGroups"].append(validUtf8(other));
        text += "gone too for " + printable(other) + "\n";
    }
    return text;
}

} // namespace tesselctl
