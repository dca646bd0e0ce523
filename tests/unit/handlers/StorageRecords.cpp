#include "unit/handlers/RecordTest.h"

namespace {

std::string lunValues(const LunMO& r)
{
    using R = LunMO;
    return shownAll(r, &R::ID, &R::NAME, &R::PARENTTYPE, &R::PARENTID, &R::PARENTNAME, &R::HEALTHSTATUS,
                    &R::RUNNINGSTATUS, &R::DESCRIPTION, &R::ALLOCTYPE, &R::CAPACITY, &R::ALLOCCAPACITY,
                    &R::ALLOCCAPACITYRAW, &R::THINCAPACITYUSAGE, &R::EXPOSEDTOINITIATOR, &R::WWN,
                    &R::OWNINGCONTROLLER, &R::WORKINGCONTROLLER, &R::ISADD2LUNGROUP);
}

std::string lunGroupValues(const LunGroupMO& r)
{
    using R = LunGroupMO;
    return shownAll(r, &R::ID, &R::NAME, &R::DESCRIPTION, &R::ISADD2MAPPINGVIEW, &R::APPTYPE, &R::GROUPTYPE);
}

std::string snapshotValues(const SnapshotMO& r)
{
    using R = SnapshotMO;
    return shownAll(r, &R::ID, &R::NAME, &R::PARENTTYPE, &R::PARENTID, &R::PARENTNAME, &R::HEALTHSTATUS,
                    &R::RUNNINGSTATUS, &R::DESCRIPTION, &R::USERCAPACITY, &R::CONSUMEDCAPACITY, &R::WWN);
}

} // namespace

std::vector<RecordCase> storageRecords()
{
    return {
        {"LunMO",
         "getLun",
         [](CDeviceManagerImpl& m) { return lunValues(handlers::lun(m).getLun("7")); },
         R"("" "" 0 "" "" 0 0 "" 100 max max 0 0 false "" "" "" -1)",
         R"({"ID":"7","NAME":"n","PARENTID":"p","PARENTNAME":"pn","HEALTHSTATUS":"1","RUNNINGSTATUS":"27",
             "DESCRIPTION":"d","ALLOCTYPE":"1","CAPACITY":"2048","SECTORSIZE":"512","ALLOCCAPACITY":"10",
             "THINCAPACITYUSAGE":"55","EXPOSEDTOINITIATOR":"true","WWN":"6a","OWNINGCONTROLLER":"0A",
             "WORKINGCONTROLLER":"0B","ISADD2LUNGROUP":"true","PARENTTYPE":"999","REMAINING":["x"]})",
         R"("7" "n" 216 "p" "pn" 1 27 "d" 1 1048576 5120 10 55 true "6a" "0A" "0B" 1)",
         true,
         {},
         {"PARENTTYPE", "REMAINING"}},
        {"LunGroupMO", "getLunGroup",
         [](CDeviceManagerImpl& m) { return lunGroupValues(handlers::lunGroup(m).getLunGroup("5")); },
         R"("" "" "" -1 100 0)",
         R"({"ID":"5","NAME":"n","DESCRIPTION":"d","ISADD2MAPPINGVIEW":"true","APPTYPE":"3","GROUPTYPE":"4"})",
         R"("5" "n" "d" 1 3 4)"},
        {"SnapshotMO",
         "getSnapshot",
         [](CDeviceManagerImpl& m) { return snapshotValues(handlers::snapshot(m).getSnapshot("8")); },
         R"("" "" 0 "" "" 0 0 "" max max "")",
         R"({"ID":"8","NAME":"n","PARENTTYPE":11,"PARENTID":"p","PARENTNAME":"pn","HEALTHSTATUS":"1",
             "RUNNINGSTATUS":"43","DESCRIPTION":"d","USERCAPACITY":"18446744073709551614",
             "CONSUMEDCAPACITY":"0","WWN":"6b"})",
         R"("8" "n" 11 "p" "pn" 1 43 "d" 18446744073709551614 0 "6b")",
         true,
         {"PARENTTYPE"}},
    };
}
