// The operations of hosts, host groups and initiators, request by request.

#include "unit/handlers/Exchange.h"

namespace {

using namespace handlers;
using journal::done;
using journal::join;
using M = CDeviceManagerImpl&;

HostMO wholeHost()
{
    HostMO host;
    host.ID = "4";
    host.NAME = "h";
    host.PARENTTYPE = 14;
    host.PARENTID = "2";
    host.LOCATION = "rack 1";
    host.HEALTHSTATUS = 1;  // not sent
    host.RUNNINGSTATUS = 1; // not sent
    host.DESCRIPTION = "d";
    host.OPERATIONSYSTEM = 7;
    host.IP = "192.0.2.9";
    host.ISADD2HOSTGROUP = 1; // not sent
    return host;
}

} // namespace

std::vector<Exchange> hostExchanges()
{
    const Lines readBack = done("getHost", "GET /host/9");
    return {
        Exchange(
            "createHost",
            [](M m) {
                HostMO mo;
                mo.NAME = "h";
                mo.OPERATIONSYSTEM = 0;
                host(m).createHost(mo);
            },
            "POST /host TYPE=int:21 NAME=string:h OPERATIONSYSTEM=int:0")
            .reading(CREATED, readBack),
        Exchange(
            "createHost",
            [](M m) {
                HostMO mo = wholeHost();
                host(m).createHost(mo);
            },
            "POST /host ID=string:4 TYPE=int:21 NAME=string:h OPERATIONSYSTEM=int:7 PARENTTYPE=int:14"
            " PARENTID=string:2 LOCATION=string:rack 1 DESCRIPTION=string:d IP=string:192.0.2.9")
            .variant("WithEverything")
            .reading(CREATED, readBack),
        Exchange(
            "getHost", [](M m) { host(m).getHost("3"); }, "GET /host/3")
            .reading(CREATED),
    };
}

std::vector<Exchange> hostGroupExchanges()
{
    const Lines readBack = done("getHostGroup", "GET /hostgroup/9");
    return {
        Exchange(
            "createHostGroup",
            [](M m) {
                HostGroupMO mo;
                mo.NAME = "hg";
                hostGroup(m).createHostGroup(mo);
            },
            "POST /hostgroup TYPE=int:14 NAME=string:hg")
            .reading(CREATED, readBack),
        Exchange(
            "createHostGroup",
            [](M m) {
                HostGroupMO mo;
                mo.ID = "4";
                mo.NAME = "hg";
                mo.DESCRIPTION = "d";
                mo.ISADD2MAPPINGVIEW = 1;
                hostGroup(m).createHostGroup(mo);
            },
            "POST /hostgroup TYPE=int:14 NAME=string:hg DESCRIPTION=string:d ID=string:4")
            .variant("WithEverything")
            .reading(CREATED, readBack),
        Exchange(
            "deleteHostGroup", [](M m) { hostGroup(m).deleteHostGroup("5"); }, "DELETE /hostgroup/5"),
        Exchange(
            "getHostGroup", [](M m) { hostGroup(m).getHostGroup("5"); }, "GET /hostgroup/5")
            .reading(CREATED),
        Exchange(
            "getHostGroupByHost",
            [](M m) {
                HostGroupQuery q;
                hostGroup(m).getHostGroupByHost("3", q);
            },
            "GET /hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3")
            .reading(TWO_AND_ONE_WITHOUT_ID, join(done("getHostGroup", "GET /hostgroup/1"),
                                                  done("getHostGroup", "GET /hostgroup/2"))),
        Exchange(
            "getHostGroupByMappingView", [](M m) { hostGroup(m).getHostGroupByMappingView("6"); },
            "GET /hostgroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=6")
            .reading(TWO_AND_ONE_WITHOUT_ID, done("getHostGroup", "GET /hostgroup/1")),
    };
}

std::vector<Exchange> iscsiExchanges()
{
    const auto named = [](const char* name) {
        IscsiInitiatorMO mo;
        mo.ID = "iqn";
        mo.NAME = name;
        return mo;
    };
    const Lines current = done("getIscsiInitiator", "GET /iscsi_initiator/iqn");
    return {
        Exchange(
            "createIscsiInitiator",
            [named](M m) {
                IscsiInitiatorMO mo = named("");
                iscsi(m).createIscsiInitiator(mo);
            },
            "POST /iscsi_initiator ID=string:iqn USECHAP=string:false")
            .closingAsEntered()
            .reading(CREATED, done("getIscsiInitiator", "GET /iscsi_initiator/9")),
        Exchange(
            "createIscsiInitiator",
            [named](M m) {
                IscsiInitiatorMO mo = named("n");
                mo.PARENTID = "3";
                mo.PARENTTYPE = 21;
                iscsi(m).createIscsiInitiator(mo);
            },
            "POST /iscsi_initiator ID=string:iqn PARENTID=string:3 PARENTTYPE=int:21"
            " USECHAP=string:false NAME=string:n")
            .variant("WithParentAndName")
            .closingAsEntered()
            .reading(CREATED, done("getIscsiInitiator", "GET /iscsi_initiator/9")),
        Exchange(
            "deleteIscsiInitiator", [](M m) { iscsi(m).deleteIscsiInitiator("iqn"); },
            "DELETE /iscsi_initiator/iqn"),
        Exchange(
            "modifyIscsiInitiator",
            [named](M m) {
                IscsiInitiatorMO mo = named("n");
                mo.PARENTID = "3";
                mo.PARENTTYPE = 14;
                iscsi(m).modifyIscsiInitiator(mo);
            },
            "PUT /iscsi_initiator ID=string:iqn USECHAP=string:false NAME=string:n PARENTID=string:3"
            " PARENTTYPE=int:21")
            .closingAsEntered()
            .after(CREATED, current),
        Exchange(
            "getIscsiInitiator", [](M m) { iscsi(m).getIscsiInitiator("iqn"); }, "GET /iscsi_initiator/iqn")
            .reading(CREATED),
        Exchange(
            "addIscsiInitiatorToHost", [](M m) { iscsi(m).addIscsiInitiatorToHost("iqn", "3"); },
            "PUT /iscsi_initiator/iqn PARENTTYPE=int:21 PARENTID=string:3"),
        Exchange(
            "removeIscsiInitiatorFromHost", [](M m) { iscsi(m).removeIscsiInitiatorFromHost("iqn"); },
            "PUT /iscsi_initiator/remove_iscsi_from_host ID=string:iqn"),
    };
}

std::vector<Exchange> fcExchanges()
{
    const Lines readBack = done("getFCInitiator", "GET /fc_initiator/9");
    return {
        Exchange(
            "createFCInitiator",
            [](M m) {
                FCInitiatorMO mo;
                mo.ID = "w";
                fc(m).createFCInitiator(mo);
            },
            "POST /fc_initiator ID=string:w")
            .reading(CREATED, readBack),
        Exchange(
            "createFCInitiator",
            [](M m) {
                FCInitiatorMO mo;
                mo.ID = "w";
                mo.NAME = "n";
                mo.PARENTID = "3";
                fc(m).createFCInitiator(mo);
            },
            "POST /fc_initiator ID=string:w PARENTID=string:3 PARENTTYPE=int:21 NAME=string:n")
            .variant("BoundToAHostAtOnce")
            .reading(CREATED, readBack),
        Exchange(
            "deleteFCInitiator", [](M m) { fc(m).deleteFCInitiator("w"); }, "DELETE /fc_initiator/w"),
        Exchange(
            "getFCInitiator", [](M m) { fc(m).getFCInitiator("w"); }, "GET /fc_initiator/w")
            .reading(CREATED),
        Exchange(
            "addFCInitiatorToHost", [](M m) { fc(m).addFCInitiatorToHost("w", "3"); },
            "PUT /fc_initiator/w PARENTTYPE=int:21 PARENTID=string:3"),
        Exchange(
            "removeFCInitiatorFromHost", [](M m) { fc(m).removeFCInitiatorFromHost("w"); },
            "PUT /fc_initiator/remove_fc_from_host ID=string:w"),
    };
}
