#include "job/TidyPlan.h"

#include "job/AccessMap.h"

#include <algorithm>
#include <cctype>

namespace ovra::tessel {
namespace {

constexpr size_t DIGITS = 10; ///< of the seconds since 1970, from 2001 to 2286

/** The seconds in a name of a prefix; 0 when the name is none that an attach makes. */
std::time_t secondsIn(const std::string& name, const std::string& prefix)
{
    const bool isPrefixed = name.compare(0, prefix.size(), prefix) == 0;
    const std::string seconds = isPrefixed ? name.substr(prefix.size()) : "";
    const bool isTime =
        seconds.size() == DIGITS && seconds[0] != '0' &&
        std::all_of(seconds.begin(), seconds.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    return isTime ? std::stoll(seconds) : 0;
}

/** Why an object of a prefix is not one that an attach made and left; "" when it is. */
template <class Record>
std::string doubtAbout(const Record& record, const std::string& prefix, std::time_t newest)
{
    const std::time_t made = secondsIn(record.NAME, prefix);
    if (made == 0) {
        return "its name is not one that an attach makes";
    }
    if (!record.DESCRIPTION.empty()) {
        return "it has a description, which an attach does not give";
    }
    return made > newest ? "its name tells a time not past: it may belong to an attach at work" : "";
}

TidyFinding finding(const NamedObject& object, const std::string& doubt, const std::string& proof)
{
    return {object, doubt.empty() ? TidyFinding::REMOVABLE : TidyFinding::KEPT,
            doubt.empty() ? proof : doubt};
}

std::string doubtAboutLunGroup(const BoundView& bound, std::time_t newest)
{
    std::string doubt = doubtAbout(bound.lunGroup, "lungroup_", newest);
    if (!doubt.empty()) {
        return doubt;
    }
    if (bound.members != 0) {
        return "it holds " + std::to_string(bound.members) + " LUNs and snapshots";
    }
    if (bound.viewsOfLunGroup != 1) {
        return "it is in other mapping views too";
    }
    return bound.lunGroup.APPTYPE == 0 || bound.lunGroup.APPTYPE == 100
               ? ""
               : "it has an application type, which an attach does not give";
}

std::string doubtAboutView(const BoundView& bound, const std::string& doubtAboutLuns, std::time_t newest)
{
    std::string doubt = doubtAbout(bound.view, "mappingview_", newest);
    if (!doubt.empty()) {
        return doubt;
    }
    if (bound.view.ENABLEINBANDCOMMAND != 0) {
        return "it allows in-band commands, which an attach does not set";
    }
    return doubtAboutLuns.empty() ? "" : "it binds the LUN group " + bound.lunGroup.NAME + ", which stays";
}

} // namespace

std::time_t secondsInName(const std::string& hostGroupName)
{
    return secondsIn(hostGroupName, "hostgroup_");
}

std::vector<TidyFinding> planTidy(const Surroundings& found, std::time_t newest)
{
    std::vector<TidyFinding> plan;
    std::string staying; ///< a view that keeps the host group
    for (const BoundView& bound : found.views) {
        const bool hasLuns = !bound.lunGroup.ID.empty();
        const std::string luns = hasLuns ? doubtAboutLunGroup(bound, newest) : "";
        const std::string view = doubtAboutView(bound, luns, newest);
        if (hasLuns) {
            // An empty LUN group of a view that stays is that view's.
            const std::string kept = luns.empty() && !view.empty() ? "its mapping view stays" : luns;
            plan.push_back(finding(named(MO_LUNGROUP, bound.lunGroup), kept, "left by an attach, and empty"));
        }
        plan.push_back(
            finding(named(MO_MAPPINGVIEW, bound.view), view, "left by an attach, and shows nothing"));
        staying = view.empty() ? staying : bound.view.NAME;
    }
    std::string doubt = doubtAbout(found.hostGroup, "hostgroup_", newest);
    if (doubt.empty() && !staying.empty()) {
        doubt = "it is in the mapping view " + staying + ", which stays";
    }
    plan.push_back(
        finding(named(MO_HOSTGROUP, found.hostGroup), doubt, "left by an attach, and leads to nothing"));
    return plan;
}

} // namespace ovra::tessel
