#ifndef JOB_TIDYPLAN_H
#define JOB_TIDYPLAN_H

#include <tessel/HostGroup.h>
#include <tessel/LunGroup.h>
#include <tessel/MappingView.h>
#include <tessel/Tidy.h>

#include <ctime>
#include <string>
#include <vector>

namespace ovra::tessel {

/** A mapping view of a host group, and what it binds. */
struct BoundView
{
    MappingViewMO view;
    LunGroupMO lunGroup;        ///< an empty ID: none
    uint64_t members = 0;       ///< LUNs and snapshots of the LUN group
    size_t viewsOfLunGroup = 0; ///< mapping views that bind the LUN group
};

/** A host group of the host, and all that can be reached from it. */
struct Surroundings
{
    HostGroupMO hostGroup;
    std::vector<BoundView> views;
};

/** The seconds that the name of a host group tells when an attach made it; 0 when none did. */
std::time_t secondsInName(const std::string& hostGroupName);

/**
 * What may go, in the order in which it is to be removed, and what stays: LUN groups, mapping views, the host
 * group.
 * @param newest objects whose name tells a later second are left alone.
 */
std::vector<TidyFinding> planTidy(const Surroundings& found, std::time_t newest);

} // namespace ovra::tessel

#endif
