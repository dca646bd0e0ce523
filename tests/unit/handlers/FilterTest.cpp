// The paths of list requests: which conditions of the query's record are written, how, and in which order.

#include "unit/handlers/FilterTest.h"

#include <limits>

TEST_P(EveryFilter, HoldsTheSetConditionsInTheirOrderAndTheRangeOnlyWithACount)
{
    GetParam().list(manager);
    ASSERT_EQ(platform.requests().size(), 1u);
    EXPECT_EQ(platform.requests().front().path, GetParam().path);
}

namespace {

using namespace handlers;
using M = CDeviceManagerImpl&;

const unsigned long MOST = std::numeric_limits<unsigned long>::max();

std::vector<Listing> luns()
{
    const Kind<LunMO, LunQuery> kind = {"/lun/associate?", "TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=7",
                                        [](M m, LunQuery& q) { lun(m).getLunByLunGroup("7", q); }};
    return {
        kind.with(
            "Unset", [](LunMO&) {}, ""),
        kind.with(
            "Name", [](LunMO& mo) { mo.NAME = "a"; }, "filter=NAME:a&"),
        kind.with(
            "Id", [](LunMO& mo) { mo.ID = "1"; }, "filter=ID:1&"),
        kind.with(
            "Pool", [](LunMO& mo) { mo.PARENTID = "0"; }, "filter=PARENTID:0&"),
        kind.with(
            "Thick", [](LunMO& mo) { mo.ALLOCTYPE = 0; }, "filter=ALLOCTYPE:0&"),
        kind.with(
            "State", [](LunMO& mo) { mo.RUNNINGSTATUS = 4294967295u; }, "filter=RUNNINGSTATUS:4294967295&"),
        kind.with(
            "Health", [](LunMO& mo) { mo.HEALTHSTATUS = 1; }, "filter=HEALTHSTATUS:1&"),
        kind.with(
            "NotInAGroup", [](LunMO& mo) { mo.ISADD2LUNGROUP = 0; }, "filter=ISADD2LUNGROUP:0&"),
        kind.with(
            "Negative", [](LunMO& mo) { mo.ISADD2LUNGROUP = -2; }, "filter=ISADD2LUNGROUP:-2&"),
        kind.with(
            "FieldsThatAreNoConditions",
            [](LunMO& mo) {
                mo.PARENTTYPE = 216;
                mo.PARENTNAME = mo.DESCRIPTION = mo.WWN = mo.OWNINGCONTROLLER = mo.WORKINGCONTROLLER = "x";
                mo.CAPACITY = mo.ALLOCCAPACITY = mo.ALLOCCAPACITYRAW = mo.THINCAPACITYUSAGE = 1;
                mo.EXPOSEDTOINITIATOR = true;
            },
            ""),
        kind.with(
            "Everything",
            [](LunMO& mo) {
                mo.ID = "1";
                mo.NAME = "a b";
                mo.PARENTID = "2";
                mo.ALLOCTYPE = 1;
                mo.RUNNINGSTATUS = 27;
                mo.HEALTHSTATUS = 1;
                mo.ISADD2LUNGROUP = 1;
            },
            "filter=ID:1 and NAME:a b and PARENTID:2 and ALLOCTYPE:1 and RUNNINGSTATUS:27 and "
            "HEALTHSTATUS:1 and ISADD2LUNGROUP:1&",
            200, 100, "&range=[200-300]"),
        kind.with(
            "RangeAlone", [](LunMO&) {}, "", 0, 100, "&range=[0-100]"),
        kind.with(
            "StartWithoutCount", [](LunMO&) {}, "", 5, 0),
        kind.with(
            "LargeNumbers", [](LunMO&) {}, "", MOST - 1, 1,
            "&range=[18446744073709551614-18446744073709551615]"),
        kind.with(
            "AnEndBeyondAllNumbers", [](LunMO&) {}, "", MOST - 1, 3,
            "&range=[18446744073709551614-18446744073709551615]"),
    };
}

std::vector<Listing> lunGroups()
{
    const Kind<LunGroupMO, LunGroupQuery> kind = {
        "/lungroup/associate?", "TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=5",
        [](M m, LunGroupQuery& q) { lunGroup(m).getLunGroupByLun("5", q); }};
    return {
        kind.with(
            "Unset", [](LunGroupMO&) {}, ""),
        kind.with(
            "NameAndType",
            [](LunGroupMO& mo) {
                mo.NAME = "lg1";
                mo.APPTYPE = 0;
            },
            "filter=NAME:lg1 and APPTYPE:0&", 0, 10, "&range=[0-10]"),
        kind.with(
            "ALaterPage", [](LunGroupMO&) {}, "", 7, 2, "&range=[7-9]"),
        kind.with(
            "NotInAView", [](LunGroupMO& mo) { mo.ISADD2MAPPINGVIEW = 0; }, "filter=ISADD2MAPPINGVIEW:0&"),
        kind.with(
            "FieldsThatAreNoConditions",
            [](LunGroupMO& mo) {
                mo.DESCRIPTION = "x";
                mo.GROUPTYPE = 1;
            },
            ""),
        kind.with(
            "Everything",
            [](LunGroupMO& mo) {
                mo.ID = "1";
                mo.NAME = "a";
                mo.ISADD2MAPPINGVIEW = 1;
                mo.APPTYPE = 3;
            },
            "filter=ID:1 and NAME:a and ISADD2MAPPINGVIEW:1 and APPTYPE:3&"),
    };
}

std::vector<Listing> snapshots()
{
    const Kind<SnapshotMO, SnapshotQuery> kind = {
        "/snapshot/associate?", "TYPE=27&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=5",
        [](M m, SnapshotQuery& q) { snapshot(m).getSnapshotByLunGroup("5", q); }};
    return {
        kind.with(
            "Unset", [](SnapshotMO&) {}, ""),
        kind.with(
            "NameAndPage", [](SnapshotMO& mo) { mo.NAME = "snap01"; }, "filter=NAME:snap01&", 0, 100,
            "&range=[0-100]"),
        kind.with(
            "ALaterPage", [](SnapshotMO&) {}, "", 200, 100, "&range=[200-300]"),
        kind.with(
            "HealthAlone", [](SnapshotMO& mo) { mo.HEALTHSTATUS = 1; }, "filter=HEALTHSTATUS:1&"),
        kind.with(
            "FieldsThatAreNoConditions",
            [](SnapshotMO& mo) {
                mo.PARENTTYPE = 11;
                mo.PARENTNAME = mo.DESCRIPTION = mo.WWN = "x";
                mo.USERCAPACITY = mo.CONSUMEDCAPACITY = 1;
            },
            ""),
        kind.with(
            "Everything",
            [](SnapshotMO& mo) {
                mo.ID = "1";
                mo.NAME = "a";
                mo.PARENTID = "2";
                mo.RUNNINGSTATUS = 43;
                mo.HEALTHSTATUS = 1;
            },
            "filter=ID:1 and NAME:a and PARENTID:2 and RUNNINGSTATUS:43 and HEALTHSTATUS:1&"),
    };
}

INSTANTIATE_TEST_SUITE_P(Lun, EveryFilter, testing::ValuesIn(luns()), listingName);
INSTANTIATE_TEST_SUITE_P(LunGroup, EveryFilter, testing::ValuesIn(lunGroups()), listingName);
INSTANTIATE_TEST_SUITE_P(Snapshot, EveryFilter, testing::ValuesIn(snapshots()), listingName);

} // namespace
