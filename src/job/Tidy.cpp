#include "job/TidyPlan.h"
#include "job/Tries.h"
#include "observer/Observation.h"
#include "session/CallsAtWork.h"
#include "session/LastFailure.h"
#include "session/ManagerOptions.h"

#include <tessel/Array.h>

#include <ctime>
#include <utility>

namespace ovra::tessel {
namespace {

constexpr std::time_t LONGEST_WAIT = 10;

/** The walk over one host's groups. One use. */
class Tidying
{
public:
    Tidying(CDeviceManager& manager, std::string hostID, const TidyOptions& options,
            const std::function<bool(const TidyFinding&)>& tell)
        : m_array(manager), m_hostID(std::move(hostID)), m_options(options), m_tell(tell)
    {
        m_patience.tries = options.tries;
        m_patience.pauseMilliseconds = options.pauseMilliseconds;
    }

    TidyResult run()
    {
        // All groups are listed first: removing while listing would shift the pages.
        const std::vector<HostGroupMO> groups =
            read([&] { return m_array.hostGroups().ofHost(m_hostID).all(); });
        for (const HostGroupMO& group : groups) {
            if (!m_result.isComplete) {
                break;
            }
            awaitAge(group);
            clear(surroundings(group));
        }
        return m_result;
    }

private:
    template <class Read>
    auto read(const Read& call) const -> decltype(call())
    {
        return whileBusy(m_patience, call);
    }

    std::time_t newest() const
    {
        return std::time(nullptr) - static_cast<std::time_t>(m_options.minimumAgeSeconds);
    }

    /** An attach that was at work a moment ago has ended when its objects are old enough. */
    void awaitAge(const HostGroupMO& group) const
    {
        const std::time_t wait = secondsInName(group.NAME) - newest();
        if (wait > 0 && wait <= LONGEST_WAIT) {
            pauseFor(static_cast<unsigned>(wait + 1) * 1000000); // the other names may be a second later
        }
    }

    Surroundings surroundings(const HostGroupMO& group) const
    {
        Surroundings found{group, {}};
        for (const MappingViewMO& view :
             read([&] { return m_array.mappingViews().ofHostGroup(group.ID).all(); })) {
            BoundView bound;
            bound.view = view;
            bound.lunGroup = read([&] { return m_array.lunGroups()->getLunGroupByMappingView(view.ID); });
            const std::string& luns = bound.lunGroup.ID;
            if (!luns.empty()) {
                bound.members = read([&] { return m_array.lunGroups()->getObjNOFromLunGroup(luns); });
                bound.viewsOfLunGroup =
                    read([&] { return m_array.mappingViews().ofLunGroup(luns).all(); }).size();
            }
            found.views.push_back(bound);
        }
        return found;
    }

    /** Removes what may go, as long as nothing stays that was to go before. */
    void clear(const Surroundings& found)
    {
        std::string stayed;
        for (TidyFinding finding : planTidy(found, newest())) {
            if (!m_result.isComplete) {
                return;
            }
            if (finding.verdict == TidyFinding::REMOVABLE && !m_options.isDryRun) {
                const std::string refusal =
                    stayed.empty() ? remove(finding.object, found) : stayed + " stays";
                finding.verdict = refusal.empty() ? TidyFinding::REMOVED : TidyFinding::KEPT;
                finding.reason = refusal.empty() ? finding.reason : refusal;
                stayed = refusal.empty() ? "" : finding.object.NAME;
            }
            tell(finding);
        }
    }

    void tell(const TidyFinding& finding)
    {
        ++(finding.verdict == TidyFinding::KEPT ? m_result.kept : m_result.removed);
        const bool goesOn = !m_tell || m_tell(finding);
        m_result.isComplete = goesOn && (m_options.most == 0 || m_result.removed < m_options.most);
    }

    /** @return why the array keeps it; "" when it is gone. */
    std::string remove(const NamedObject& object, const Surroundings& found)
    {
        switch (object.type) {
        case MO_LUNGROUP:
            return removeLunGroup(object.ID, found);
        case MO_MAPPINGVIEW:
            return removeView(object.ID, found.hostGroup.ID);
        default:
            return removeHostGroup(object.ID);
        }
    }

    std::string removeLunGroup(const std::string& group, const Surroundings& found)
    {
        for (const BoundView& bound : found.views) {
            if (bound.lunGroup.ID == group) {
                std::string refusal = changed(
                    [&] { m_array.mappingViews()->removeLunGroupFromMappingView(group, bound.view.ID); });
                if (!refusal.empty()) {
                    return refusal;
                }
            }
        }
        return changed([&] { m_array.lunGroups()->deleteLunGroup(group); });
    }

    /** A view that binds a host group alone may be deleted on most arrays; so it can be found till the end.
     */
    std::string removeView(const std::string& view, const std::string& hostGroup)
    {
        const auto deleteIt = [&] { m_array.mappingViews()->deleteMappingView(view); };
        if (changed(deleteIt).empty()) {
            return "";
        }
        const std::string refusal =
            changed([&] { m_array.mappingViews()->removeHostGroupFromMappingView(hostGroup, view); });
        return refusal.empty() ? changed(deleteIt) : refusal;
    }

    std::string removeHostGroup(const std::string& group)
    {
        const HostGroups groups = m_array.hostGroups();
        groups->removeHostFromHostGroup(m_hostID, group); // tells no failure
        if (holdsHost(group)) {
            return "the array does not take the host out of it; the run log says why";
        }
        const std::string refusal = changed([&] { groups->deleteHostGroup(group); });
        if (refusal.empty()) {
            return "";
        }
        groups->addHostToHostGroup(m_hostID, group);
        return holdsHost(group) ? refusal : refusal + " (and the host could not be put back into it)";
    }

    bool holdsHost(const std::string& group) const
    {
        HostGroupQuery query;
        query.filter.ID = group;
        return !read([&] { return m_array.hostGroups()->getHostGroupByHost(m_hostID, query); }).empty();
    }

    /** Changes something; again while the array is busy. @return the array's refusal; "" when it is done. */
    template <class Change>
    std::string changed(const Change& change) const
    {
        try {
            whileBusy(m_patience, change);
            return "";
        } catch (const OvraAPIExceptionWithErrCode& refusal) {
            return std::string("the array keeps it: ") + refusal.what();
        }
    }

    Array m_array;
    std::string m_hostID;
    const TidyOptions& m_options;
    const std::function<bool(const TidyFinding&)>& m_tell;
    AccessOptions m_patience;
    TidyResult m_result;
};

} // namespace

TidyResult tidy(CDeviceManager& manager, const std::string& hostID, const TidyOptions& options,
                const std::function<bool(const TidyFinding&)>& tell)
{
    return calling(FailureKind::REFUSED, [&] {
        const OptionsInForce limits(&manager);
        return observed("tidy", manager, [&](Observation& seen) {
            seen.names(kinds::HOST, hostID);
            return Tidying(manager, hostID, options, tell).run();
        });
    });
}

} // namespace ovra::tessel
