// The paths of list requests of host groups, mapping views and ports.

#include "unit/handlers/FilterTest.h"

namespace {

using namespace handlers;
using M = CDeviceManagerImpl&;

std::vector<Listing> groupsAndViews()
{
    const Kind<HostGroupMO, HostGroupQuery> groups = {
        "/hostgroup/associate?", "TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3",
        [](M m, HostGroupQuery& q) { hostGroup(m).getHostGroupByHost("3", q); }};
    const Kind<MappingViewMO, MappingViewQuery> views = {
        "/mappingview/associate?", "TYPE=245&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=5",
        [](M m, MappingViewQuery& q) { mappingView(m).getMappingViewByLunGroup("5", q); }};
    const auto group = [](HostGroupMO& mo) {
        mo.ID = "1";
        mo.NAME = "a";
    };
    const auto view = [](MappingViewMO& mo) {
        mo.ID = "1";
        mo.NAME = "a";
    };
    return {
        groups.with(
            "HostGroupUnset", [](HostGroupMO&) {}, ""),
        groups.with(
            "HostGroupName", [](HostGroupMO& mo) { mo.NAME = "a"; }, "filter=NAME:a&"),
        groups.with("HostGroupEverything", group, "filter=ID:1 and NAME:a&", 1, 2, "&range=[1-3]"),
        groups.with(
            "HostGroupNoConditions",
            [](HostGroupMO& mo) {
                mo.DESCRIPTION = "x";
                mo.ISADD2MAPPINGVIEW = 1;
            },
            ""),
        views.with(
            "MappingViewUnset", [](MappingViewMO&) {}, ""),
        views.with(
            "MappingViewName", [](MappingViewMO& mo) { mo.NAME = "a"; }, "filter=NAME:a&"),
        views.with("MappingViewEverything", view, "filter=ID:1 and NAME:a&", 1, 2, "&range=[1-3]"),
        views.with(
            "MappingViewNoConditions",
            [](MappingViewMO& mo) {
                mo.DESCRIPTION = "x";
                mo.ENABLEINBANDCOMMAND = 1;
            },
            ""),
    };
}

template <class MO, class Query>
std::vector<Listing> ports(const std::string& resource, std::function<void(CDeviceManagerImpl&, Query&)> ask)
{
    const Kind<MO, Query> kind = {"/" + resource + "?", "", std::move(ask)};
    std::vector<Listing> all = {
        kind.with(
            "Unset", [](MO&) {}, ""),
        kind.with(
            "RangeAlone", [](MO&) {}, "", 0, 50, "range=[0-50]"),
        kind.with(
            "FilterAlone", [](MO& mo) { mo.NAME = "a"; }, "filter=NAME:a&"),
        kind.with(
            "LogicType0", [](MO& mo) { mo.LOGICTYPE = 0; }, "filter=LOGICTYPE:0&"),
        kind.with(
            "FieldsThatAreNoConditions",
            [](MO& mo) {
                mo.LOCATION = "x";
                mo.HEALTHSTATUS = mo.RUNNINGSTATUS = mo.INIORTGT = 1;
            },
            ""),
        kind.with(
            "Everything",
            [](MO& mo) {
                mo.ID = "1";
                mo.NAME = "a";
                mo.LOGICTYPE = 3;
            },
            "filter=ID:1 and NAME:a and LOGICTYPE:3&", 10, 5, "range=[10-15]"),
    };
    for (Listing& listing : all) {
        listing.name = resource + "_" + listing.name;
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Access, EveryFilter, testing::ValuesIn(groupsAndViews()), listingName);
INSTANTIATE_TEST_SUITE_P(FC, EveryFilter,
                         testing::ValuesIn(ports<FCPortMO, FCPortQuery>(
                             "FC_PORT", [](M m, FCPortQuery& q) { fcPort(m).getFCPortBatch(q); })),
                         listingName);
INSTANTIATE_TEST_SUITE_P(FCoE, EveryFilter,
                         testing::ValuesIn(ports<FCoEPortMO, FCoEPortQuery>(
                             "FCoE_PORT", [](M m, FCoEPortQuery& q) { fcoePort(m).getFCoEPortBatch(q); })),
                         listingName);
INSTANTIATE_TEST_SUITE_P(Eth, EveryFilter,
                         testing::ValuesIn(ports<ETHPortMO, ETHPortQuery>(
                             "ETH_PORT", [](M m, ETHPortQuery& q) { ethPort(m).getETHPortBatch(q); })),
                         listingName);

} // namespace
