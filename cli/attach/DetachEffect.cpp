#include "attach/DetachEffect.h"

#include "attach/Patience.h"
#include "objects/Listing.h"
#include "objects/Membership.h"
#include "text/Display.h"
#include "text/Words.h"

namespace tesselctl {
namespace {

const std::string OWN = "tessel_host_";

bool isDigits(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/** An attach of the old kind names what it makes by the time: "lungroup_1700000000". */
bool isOldName(const std::string& name, const std::string& prefix)
{
    return name.compare(0, prefix.size(), prefix) == 0 && isDigits(name.substr(prefix.size()));
}

/** @param host empty: any. */
bool isMadeByAttach(const std::string& name, const std::string& prefix, const std::string& host)
{
    return isOldName(name, prefix) ||
           (host.empty() ? name.compare(0, OWN.size(), OWN) == 0 : isOwnName(name, host));
}

template <class Object>
std::string label(const char* title, const Object& object)
{
    return std::string(title) + " " + object.ID + " (" + object.NAME + ")";
}

/** Calls use(host group) for those on the views of a LUN group. */
template <class Use>
void forEachHostGroup(Session& session, const std::string& lunGroup, const Use& use)
{
    const auto views = patiently([&] {
        return listed(session, "mapping view", &CMappingViewHandler::getMappingViewByLunGroup, lunGroup);
    });
    for (const auto& view : views) {
        const HostGroupMO group = patiently(
            [&] { return session.handler<CHostGroupHandler>().getHostGroupByMappingView(view.ID); });
        if (!group.ID.empty()) {
            use(group);
        }
    }
}

bool holds(Session& session, const HostGroupMO& group, const std::string& host)
{
    return patiently([&] { return lists(session, &CHostGroupHandler::getHostGroupByHost, host, group.ID); });
}

/** The host groups through which others than the host may see what a LUN group holds. */
std::vector<std::string> othersOn(Session& session, const std::string& lunGroup, const std::string& host)
{
    std::vector<std::string> others;
    forEachHostGroup(session, lunGroup, [&](const HostGroupMO& group) {
        if (!holds(session, group, host)) {
            others.push_back(label("host group", group));
        } else if (!isMadeByAttach(group.NAME, "hostgroup_", host)) {
            others.push_back(label("host group", group) + ", whose hosts the array does not tell");
        }
    });
    return others;
}

} // namespace

bool isOwnName(const std::string& name, const std::string& host)
{
    const std::string plain = OWN + host;
    return name == plain || isOldName(name, plain + "_");
}

LunGroupList groupsTowards(Session& session, const Attachable& object, const std::string& id,
                           const std::string& host)
{
    LunGroupList groups;
    for (const auto& group : patiently([&] { return object.groups(session, id); })) {
        bool isSeen = false;
        const bool isOfAnother = group.NAME.compare(0, OWN.size(), OWN) == 0 && !isOwnName(group.NAME, host);
        if (!isOfAnother) { // a LUN of a cluster is in one of every host
            forEachHostGroup(session, group.ID, [&](const HostGroupMO& hosts) {
                isSeen = isSeen || holds(session, hosts, host);
            });
        }
        if (isSeen) {
            groups.push_back({MO_LUNGROUP, group.ID, group.NAME});
        }
    }
    return groups;
}

std::vector<std::string> objections(Session& session, const Attachable& object, const std::string& id,
                                    const LunGroupList& groups, const std::string& host)
{
    std::vector<std::string> reasons;
    std::vector<std::string> others;
    for (const auto& group : groups) {
        if (!isMadeByAttach(group.NAME, "lungroup_", host)) {
            reasons.push_back(label("LUN group", group) + ", which no attach has made, holds " +
                              object.called(id));
        }
        const auto more = host.empty() ? std::vector<std::string>() : othersOn(session, group.ID, host);
        others.insert(others.end(), more.begin(), more.end());
    }
    if (!others.empty()) {
        reasons.push_back("other hosts may lose it: those of " + joined(others, ", and of "));
    }
    return reasons;
}

std::string tellEffect(Session& session, const LunGroupList& groups, const std::string& host,
                       Json::Value& result)
{
    std::string text;
    result["lunGroups"] = Json::Value(Json::arrayValue);
    result["otherHostGroups"] = Json::Value(Json::arrayValue);
    for (const auto& group : groups) {
        Json::Value entry(Json::objectValue);
        entry["id"] = group.ID;
        entry["name"] = validUtf8(group.NAME);
        result["lunGroups"].append(entry);
        text += "taken out of " + printable(label("LUN group", group)) + "\n";
    }
    for (const auto& group : groups) {
        const auto others = host.empty() ? std::vector<std::string>() : othersOn(session, group.ID, host);
        for (const auto& other : others) {
            result["otherHostGroups"].append(validUtf8(other));
            text += "gone too for " + printable(other) + "\n";
        }
    }
    return text;
}

} // namespace tesselctl
