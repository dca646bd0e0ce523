// The operations of LUNs, LUN groups and snapshots, request by request.

#include "unit/handlers/Exchange.h"

namespace {

using namespace handlers;
using journal::done;
using journal::join;
using M = CDeviceManagerImpl&;

const char* const TUNING = " MIRRORPOLICY=ul:1 WRITEPOLICY=ul:1 PREFETCHPOLICY=ul:3";
const char* const DISTRIBUTION = " DATATRANSFERPOLICY=ul:0 INITIALDISTRIBUTEPOLICY=ul:0";

LunMO smallLun()
{
    LunMO lun;
    lun.NAME = "db";
    lun.PARENTID = "0";
    lun.CAPACITY = 1048576;
    return lun;
}

LunMO thinLun()
{
    LunMO lun = smallLun();
    lun.ID = "77";
    lun.DESCRIPTION = "thin one";
    lun.ALLOCTYPE = 1;
    lun.ALLOCCAPACITY = 5120;
    lun.THINCAPACITYUSAGE = 80;
    lun.OWNINGCONTROLLER = "0A";
    lun.WWN = "not sent";
    return lun;
}

} // namespace

std::vector<Exchange> lunExchanges()
{
    const Lines readBack = join("usleep 200000", done("getLun", "GET /lun/9"));
    const Lines twoLuns = join(done("getLun", "GET /lun/1"), done("getLun", "GET /lun/2"));
    const auto listing = [&](const char* operation, Exchange::Call call, const char* type, const char* id) {
        return Exchange(operation, call,
                        std::string("GET /lun/associate?TYPE=11&ASSOCIATEOBJTYPE=") + type +
                            "&ASSOCIATEOBJID=" + id)
            .reading(TWO_AND_ONE_WITHOUT_ID, twoLuns);
    };
    return {
        Exchange(
            "createLun",
            [](M m) {
                LunMO mo = smallLun();
                lun(m).createLun(mo);
            },
            std::string("POST /lun TYPE=int:11 NAME=string:db PARENTTYPE=int:216 PARENTID=string:0"
                        " CAPACITY=ull:2048 ALLOCTYPE=int:0") +
                TUNING + DISTRIBUTION)
            .reading(CREATED, readBack),
        Exchange(
            "createLun",
            [](M m) {
                LunMO mo = thinLun();
                lun(m).createLun(mo);
            },
            std::string("POST /lun ID=string:77 TYPE=int:11 NAME=string:db PARENTTYPE=int:216"
                        " PARENTID=string:0 CAPACITY=ull:2048 DESCRIPTION=string:thin one ALLOCTYPE=int:1"
                        " INITIALALLOCCAPACITY=ull:10 THINCAPACITYUSAGE=ull:80") +
                TUNING + " OWNINGCONTROLLER=string:0A" + DISTRIBUTION)
            .variant("OfAThinLunWithEverything")
            .reading(CREATED, readBack),
        Exchange(
            "getLun", [](M m) { lun(m).getLun("7"); }, "GET /lun/7")
            .reading(CREATED),
        listing(
            "getLunByLunGroup",
            [](M m) {
                LunQuery q;
                lun(m).getLunByLunGroup("5", q);
            },
            "256", "5")
            .through("getLunByCondition", "getLunByCondition"),
        listing(
            "getLunByHost",
            [](M m) {
                LunQuery q;
                lun(m).getLunByHost("3", q);
            },
            "21", "3")
            .through("getLunByCondition", "getLunByCondition"),
        listing(
            "getLunByCondition",
            [](M m) {
                LunQuery q;
                lun(m).getLunByCondition("8", MO_MAPPINGVIEW, q, "any");
            },
            "245", "8"),
    };
}

std::vector<Exchange> lunGroupExchanges()
{
    const Reply count = Reply::object(R"({"COUNT":"3"})");
    const std::string of5 = "/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=5";
    const Lines twoGroups =
        join(done("getLunGroup", "GET /lungroup/1"), done("getLunGroup", "GET /lungroup/2"));
    return {
        Exchange(
            "createLunGroup",
            [](M m) {
                LunGroupMO mo;
                mo.NAME = "lg";
                lunGroup(m).createLunGroup(mo);
            },
            "POST /lungroup/ TYPE=int:256 NAME=string:lg APPTYPE=int:0 GROUPTYPE=ul:0")
            .reading(CREATED, done("getLunGroup", "GET /lungroup/9")),
        Exchange(
            "createLunGroup",
            [](M m) {
                LunGroupMO mo;
                mo.ID = "4";
                mo.NAME = "lg";
                mo.DESCRIPTION = "d";
                mo.APPTYPE = 3;
                mo.GROUPTYPE = 1;
                lunGroup(m).createLunGroup(mo);
            },
            "POST /lungroup/ ID=string:4 TYPE=int:256 NAME=string:lg DESCRIPTION=string:d APPTYPE=int:3"
            " GROUPTYPE=ul:0")
            .variant("WithEverything")
            .reading(CREATED, done("getLunGroup", "GET /lungroup/9")),
        Exchange(
            "deleteLunGroup", [](M m) { lunGroup(m).deleteLunGroup("5"); }, "DELETE /lungroup/5")
            .closingAsEntered(),
        Exchange(
            "getLunGroup", [](M m) { lunGroup(m).getLunGroup("5"); }, "GET /lungroup/5")
            .reading(CREATED),
        Exchange(
            "getLunGroupByLun",
            [](M m) {
                LunGroupQuery q;
                lunGroup(m).getLunGroupByLun("7", q);
            },
            "GET /lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=7")
            .through("getLunGroupByObjList", "getLunGroupByObjList")
            .reading(TWO_AND_ONE_WITHOUT_ID, twoGroups),
        Exchange(
            "getLunGroupBySnapshot",
            [](M m) {
                LunGroupQuery q;
                lunGroup(m).getLunGroupBySnapshot("7", q);
            },
            "GET /lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=7")
            .through("getLunGroupByObjList", "getLunGroupByObjList")
            .reading(TWO_AND_ONE_WITHOUT_ID, twoGroups),
        Exchange(
            "getLunGroupByObjList",
            [](M m) {
                LunGroupQuery q;
                lunGroup(m).getLunGroupByObjList("7", q, MO_HOST, "any");
            },
            "GET /lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=7")
            .reading(TWO_AND_ONE_WITHOUT_ID, twoGroups),
        Exchange(
            "getLunGroupByMappingView", [](M m) { lunGroup(m).getLunGroupByMappingView("6"); },
            "GET /lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=6")
            .reading(TWO_AND_ONE_WITHOUT_ID, done("getLunGroup", "GET /lungroup/1")),
        Exchange(
            "getObjNOFromLunGroup", [](M m) { lunGroup(m).getObjNOFromLunGroup("5"); }, "GET /lun" + of5)
            .loggedAs("getLunNOFromLunGroup")
            .through("getCountByAssociate", "getCountByAssociate")
            .reading(count)
            .then(count, done("getCountByAssociate", "GET /snapshot" + of5)),
        Exchange(
            "getCountByAssociate", [](M m) { lunGroup(m).getCountByAssociate("5", "snapshot"); },
            "GET /snapshot" + of5)
            .reading(count),
    };
}

std::vector<Exchange> snapshotExchanges()
{
    const Lines two = join(done("getSnapshot", "GET /SNAPSHOT/1"), done("getSnapshot", "GET /SNAPSHOT/2"));
    const std::string associated = "GET /snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=";
    return {
        Exchange(
            "getSnapshot", [](M m) { snapshot(m).getSnapshot("7"); }, "GET /SNAPSHOT/7")
            .reading(CREATED),
        Exchange(
            "getSnapshotByLunGroup",
            [](M m) {
                SnapshotQuery q;
                snapshot(m).getSnapshotByLunGroup("5", q);
            },
            associated + "256&ASSOCIATEOBJID=5")
            .throughRecordedAs("getSnapshotByCondition", "getSnapshotByLunGroup")
            .reading(TWO_AND_ONE_WITHOUT_ID, two),
        Exchange(
            "getSnapshotByHost",
            [](M m) {
                SnapshotQuery q;
                snapshot(m).getSnapshotByHost("3", q);
            },
            associated + "21&ASSOCIATEOBJID=3")
            .throughRecordedAs("getSnapshotByCondition", "getSnapshotByHost")
            .reading(TWO_AND_ONE_WITHOUT_ID, two),
        Exchange(
            "findThem",
            [](M m) {
                SnapshotQuery q;
                snapshot(m).getSnapshotByCondition("8", MO_LUN, q, "findThem");
            },
            associated + "11&ASSOCIATEOBJID=8")
            .variant("ByCondition")
            .loggedAs("getSnapshotByCondition")
            .reading(TWO_AND_ONE_WITHOUT_ID, two),
    };
}
