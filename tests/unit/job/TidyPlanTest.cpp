#include "job/TidyPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace ovra::tessel;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::time_t NEWEST = 1800000000;

/** What a detach that was ended too early leaves: everything there, and nothing shown. */
Surroundings leftovers()
{
    BoundView bound;
    bound.view.ID = "1";
    bound.view.NAME = "mappingview_1700000000";
    bound.lunGroup.ID = "2";
    bound.lunGroup.NAME = "lungroup_1700000001";
    bound.lunGroup.APPTYPE = 0;
    bound.viewsOfLunGroup = 1;
    Surroundings found;
    found.hostGroup.ID = "3";
    found.hostGroup.NAME = "hostgroup_1700000000";
    found.views = {bound};
    return found;
}

/** The types of what the plan removes, in its order: "LUN group, mapping view, host group" are 256, 245, 14.
 */
std::vector<int> removed(const Surroundings& found)
{
    std::vector<int> types;
    for (const TidyFinding& finding : planTidy(found, NEWEST)) {
        EXPECT_FALSE(finding.reason.empty());
        EXPECT_NE(finding.verdict, TidyFinding::REMOVED);
        if (finding.verdict == TidyFinding::REMOVABLE) {
            types.push_back(finding.object.type);
        }
    }
    return types;
}

TEST(TidyPlan, RemovesFromTheLunGroupToTheHostGroup)
{
    EXPECT_THAT(removed(leftovers()), ElementsAre(MO_LUNGROUP, MO_MAPPINGVIEW, MO_HOSTGROUP));
    Surroundings unset = leftovers();
    unset.views[0].lunGroup.APPTYPE = 100; // of a record in which the array told none
    EXPECT_THAT(removed(unset), ElementsAre(MO_LUNGROUP, MO_MAPPINGVIEW, MO_HOSTGROUP));
    Surroundings detached = leftovers();
    detached.views[0].lunGroup = LunGroupMO();
    EXPECT_THAT(removed(detached), ElementsAre(MO_MAPPINGVIEW, MO_HOSTGROUP));
    detached.views.clear();
    EXPECT_THAT(removed(detached), ElementsAre(MO_HOSTGROUP));
}

struct LookAlike
{
    const char* what;
    std::function<void(Surroundings&)> differ;
    std::vector<int> removed;
};

LookAlike hostGroupNamed(const char* name)
{
    return {
        name, [name](Surroundings& found) { found.hostGroup.NAME = name; }, {MO_LUNGROUP, MO_MAPPINGVIEW}};
}

LookAlike viewNamed(const char* name)
{
    return {name, [name](Surroundings& found) { found.views[0].view.NAME = name; }, {}};
}

LookAlike lunGroupNamed(const char* name)
{
    return {name, [name](Surroundings& found) { found.views[0].lunGroup.NAME = name; }, {}};
}

const std::vector<LookAlike> LOOK_ALIKES = {
    hostGroupNamed("hostgroup_170000000"),
    hostGroupNamed("hostgroup_17000000000"),
    hostGroupNamed("hostgroup_0700000000"),
    hostGroupNamed("hostgroup_17000000x0"),
    hostGroupNamed("hostgroup_ 170000000"),
    hostGroupNamed("hostgroup_1700000000 "),
    hostGroupNamed("hostgroup_1900000000"),
    hostGroupNamed("HostGroup_1700000000"),
    hostGroupNamed("my_hostgroup_1700000000"),
    hostGroupNamed("hostgroup1700000000"),
    hostGroupNamed("mappingview_1700000000"),
    hostGroupNamed("tessel_host_7"),
    hostGroupNamed(""),
    viewNamed("mappingview_payroll"),
    viewNamed("hostgroup_1700000000"),
    viewNamed("mappingview_1900000000"),
    lunGroupNamed("lungroup_payroll"),
    lunGroupNamed("lungroup_1900000000"),
    {"host group with a description",
     [](Surroundings& found) { found.hostGroup.DESCRIPTION = "mine"; },
     {MO_LUNGROUP, MO_MAPPINGVIEW}},
    {"view with a description", [](Surroundings& found) { found.views[0].view.DESCRIPTION = "mine"; }, {}},
    {"view with in-band commands",
     [](Surroundings& found) { found.views[0].view.ENABLEINBANDCOMMAND = 1; },
     {}},
    {"LUN group with a description",
     [](Surroundings& found) { found.views[0].lunGroup.DESCRIPTION = "mine"; },
     {}},
    {"LUN group with an application", [](Surroundings& found) { found.views[0].lunGroup.APPTYPE = 3; }, {}},
    {"LUN group with a LUN", [](Surroundings& found) { found.views[0].members = 1; }, {}},
    {"LUN group in two views", [](Surroundings& found) { found.views[0].viewsOfLunGroup = 2; }, {}},
    {"second view, of an administrator",
     [](Surroundings& found) {
         found.views.push_back({});
         found.views[1].view.NAME = "payroll";
     },
     {MO_LUNGROUP, MO_MAPPINGVIEW}},
};

TEST(TidyPlan, KeepsWhatDiffersInOneProperty)
{
    for (const LookAlike& one : LOOK_ALIKES) {
        Surroundings found = leftovers();
        one.differ(found);
        EXPECT_EQ(removed(found), one.removed) << one.what;
    }
}

TEST(TidyPlan, TellsWhatKeepsAnObject)
{
    Surroundings found = leftovers();
    found.views[0].members = 2;
    const std::vector<TidyFinding> plan = planTidy(found, NEWEST);
    ASSERT_EQ(plan.size(), 3u);
    EXPECT_THAT(plan[0].reason, HasSubstr("it holds 2 LUNs and snapshots"));
    EXPECT_THAT(plan[1].reason, HasSubstr("lungroup_1700000001, which stays"));
    EXPECT_THAT(plan[2].reason, HasSubstr("mappingview_1700000000, which stays"));
}

TEST(TidyPlan, KnowsTheSecondInAName)
{
    EXPECT_EQ(secondsInName("hostgroup_1700000000"), 1700000000);
    EXPECT_EQ(secondsInName("hostgroup_170000000"), 0);
}

} // namespace
