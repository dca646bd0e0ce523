// The operations of mapping views and ports, request by request.

#include "unit/handlers/Exchange.h"

namespace {

using namespace handlers;
using journal::done;
using journal::join;
using M = CDeviceManagerImpl&;

const std::string ASSOCIATE = "PUT /mappingview/create_associate TYPE=int:245 ID=string:6";
const std::string REMOVE = "PUT /mappingview/remove_associate ID=string:6 TYPE=int:245";
const std::string LIST = "GET /mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=";
const std::string LUNGROUP_5 = " ASSOCIATEOBJTYPE=ul:256 ASSOCIATEOBJID=string:5";
const std::string HOSTGROUP_5 = " ASSOCIATEOBJTYPE=ul:14 ASSOCIATEOBJID=string:5";

/** An operation that hands over to a worker, whose errors name the operation. */
Exchange worked(const std::string& operation, Exchange::Call call, const std::string& request,
                const std::string& worker)
{
    return Exchange(operation, std::move(call), request).through(worker, operation);
}

} // namespace

std::vector<Exchange> mappingViewExchanges()
{
    const Lines readBack = done("getMappingView", "GET /mappingview/9");
    const Lines two =
        join(done("getMappingView", "GET /mappingview/1"), done("getMappingView", "GET /mappingview/2"));
    return {
        Exchange(
            "createMappingView",
            [](M m) {
                MappingViewMO mo;
                mo.NAME = "v";
                mappingView(m).createMappingView(mo);
            },
            "POST /mappingview TYPE=int:245 NAME=string:v ENABLEINBANDCOMMAND=bool:false")
            .reading(CREATED, readBack),
        Exchange(
            "createMappingView",
            [](M m) {
                MappingViewMO mo;
                mo.ID = "4";
                mo.NAME = "v";
                mo.DESCRIPTION = "d";
                mo.ENABLEINBANDCOMMAND = 2;
                mappingView(m).createMappingView(mo);
            },
            "POST /mappingview ID=string:4 TYPE=int:245 NAME=string:v ENABLEINBANDCOMMAND=bool:true"
            " DESCRIPTION=string:d")
            .variant("WithEverything")
            .reading(CREATED, readBack),
        Exchange(
            "deleteMappingView", [](M m) { mappingView(m).deleteMappingView("6"); }, "DELETE /mappingview/6"),
        Exchange(
            "getMappingView", [](M m) { mappingView(m).getMappingView("6"); }, "GET /mappingview/6")
            .reading(CREATED),
        worked(
            "addLunGroupToMappingView", [](M m) { mappingView(m).addLunGroupToMappingView("5", "6"); },
            ASSOCIATE + LUNGROUP_5, "associateWithMaskingView"),
        worked(
            "addHostGroupToMappingView", [](M m) { mappingView(m).addHostGroupToMappingView("5", "6"); },
            ASSOCIATE + HOSTGROUP_5, "associateWithMaskingView"),
        worked(
            "removeLunGroupFromMappingView",
            [](M m) { mappingView(m).removeLunGroupFromMappingView("5", "6"); }, REMOVE + LUNGROUP_5,
            "removeAssociateFromMappingView"),
        worked(
            "removeHostGroupFromMappingView",
            [](M m) { mappingView(m).removeHostGroupFromMappingView("5", "6"); }, REMOVE + HOSTGROUP_5,
            "removeAssociateFromMappingView"),
        worked(
            "getMappingViewByLunGroup",
            [](M m) {
                MappingViewQuery q;
                mappingView(m).getMappingViewByLunGroup("5", q);
            },
            LIST + "256&ASSOCIATEOBJID=5", "getMappingViewByCondition")
            .reading(TWO_AND_ONE_WITHOUT_ID, two),
        worked(
            "getMappingViewByHostGroup",
            [](M m) {
                MappingViewQuery q;
                mappingView(m).getMappingViewByHostGroup("5", q);
            },
            LIST + "14&ASSOCIATEOBJID=5", "getMappingViewByCondition")
            .reading(TWO_AND_ONE_WITHOUT_ID, two),
        Exchange(
            "associateWithMaskingView",
            [](M m) { mappingView(m).associateWithMaskingView("5", "6", 256, "aCaller"); },
            ASSOCIATE + LUNGROUP_5)
            .errorsAs("aCaller"),
        Exchange(
            "removeAssociateFromMappingView",
            [](M m) { mappingView(m).removeAssociateFromMappingView("5", "6", 14, "aCaller"); },
            REMOVE + HOSTGROUP_5)
            .errorsAs("aCaller"),
        Exchange(
            "getMappingViewByCondition",
            [](M m) {
                MappingViewQuery q;
                mappingView(m).getMappingViewByCondition("5", MO_HOST, q, "aCaller");
            },
            LIST + "21&ASSOCIATEOBJID=5")
            .errorsAs("aCaller")
            .reading(TWO_AND_ONE_WITHOUT_ID, two),
    };
}

std::vector<Exchange> portExchanges()
{
    const auto two = [](const char* operation, const std::string& resource) {
        return join(done(operation, "GET " + resource + "/1"), done(operation, "GET " + resource + "/2"));
    };
    return {
        Exchange(
            "getFCPort", [](M m) { fcPort(m).getFCPort("7"); }, "GET /FC_PORT/7")
            .reading(CREATED),
        Exchange(
            "getFCPortBatch",
            [](M m) {
                FCPortQuery q;
                fcPort(m).getFCPortBatch(q);
            },
            "GET /FC_PORT?")
            .reading(TWO_AND_ONE_WITHOUT_ID, two("getFCPort", "/FC_PORT")),
        Exchange(
            "getFCoEPort", [](M m) { fcoePort(m).getFCoEPort("7"); }, "GET /FCoE_PORT/7")
            .reading(CREATED),
        Exchange(
            "getFCoEPortBatch",
            [](M m) {
                FCoEPortQuery q;
                fcoePort(m).getFCoEPortBatch(q);
            },
            "GET /FCoE_PORT?")
            .reading(TWO_AND_ONE_WITHOUT_ID, two("getFCoEPort", "/FCoE_PORT")),
        Exchange(
            "getETHPort", [](M m) { ethPort(m).getETHPort("7"); }, "GET /ETH_PORT/7")
            .reading(CREATED),
        Exchange(
            "getETHPortBatch",
            [](M m) {
                ETHPortQuery q;
                ethPort(m).getETHPortBatch(q);
            },
            "GET /ETH_PORT?")
            .reading(TWO_AND_ONE_WITHOUT_ID, two("getETHPort", "/ETH_PORT")),
    };
}
