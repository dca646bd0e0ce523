#include "unit/handlers/RecordTest.h"

namespace {

std::string hostValues(const HostMO& r)
{
    using R = HostMO;
    return shownAll(r, &R::ID, &R::NAME, &R::PARENTTYPE, &R::PARENTID, &R::LOCATION, &R::HEALTHSTATUS,
                    &R::RUNNINGSTATUS, &R::DESCRIPTION, &R::OPERATIONSYSTEM, &R::IP, &R::ISADD2HOSTGROUP);
}

std::string hostGroupValues(const HostGroupMO& r)
{
    using R = HostGroupMO;
    return shownAll(r, &R::ID, &R::NAME, &R::DESCRIPTION, &R::ISADD2MAPPINGVIEW);
}

std::string mappingViewValues(const MappingViewMO& r)
{
    using R = MappingViewMO;
    return shownAll(r, &R::ID, &R::NAME, &R::DESCRIPTION, &R::ENABLEINBANDCOMMAND);
}

std::string iscsiValues(const IscsiInitiatorMO& r)
{
    using R = IscsiInitiatorMO;
    return shownAll(r, &R::ID, &R::NAME, &R::PARENTID, &R::PARENTNAME, &R::PARENTTYPE, &R::HEALTHSTATUS,
                    &R::RUNNINGSTATUS, &R::ISFREE, &R::USECHAP, &R::NORMALVERMODE, &R::DISCOVERYVERMODE,
                    &R::CHAPNAME, &R::CHAPPASSWORD, &R::CHAPOLDPASSWORD, &R::CHAPNAMEINITATORVERTARGET,
                    &R::CHAPPASSWORDINITATORVERTARGET, &R::CHAPOLDPASSWORDINITATORVERTARGET);
}

std::string fcValues(const FCInitiatorMO& r)
{
    using R = FCInitiatorMO;
    return shownAll(r, &R::ID, &R::NAME, &R::PARENTID, &R::PARENTNAME, &R::HEALTHSTATUS, &R::RUNNINGSTATUS,
                    &R::ISFREE);
}

} // namespace

std::vector<RecordCase> accessRecords()
{
    return {
        {"HostMO",
         "getHost",
         [](CDeviceManagerImpl& m) { return hostValues(handlers::host(m).getHost("3")); },
         R"("" "" 0 "" "" 0 0 "" 100 "" -1)",
         R"({"ID":"3","NAME":"n","PARENTTYPE":14,"PARENTID":"p","LOCATION":"l","HEALTHSTATUS":"1",
             "RUNNINGSTATUS":"2","DESCRIPTION":"d","OPERATIONSYSTEM":"7","IP":"192.0.2.9",
             "ISADD2HOSTGROUP":"true"})",
         R"("3" "n" 14 "p" "l" 1 2 "d" 7 "192.0.2.9" 1)",
         true,
         {"PARENTTYPE"}},
        {"HostGroupMO", "getHostGroup",
         [](CDeviceManagerImpl& m) { return hostGroupValues(handlers::hostGroup(m).getHostGroup("5")); },
         R"("" "" "" -1)", R"({"ID":"5","NAME":"n","DESCRIPTION":"d","ISADD2MAPPINGVIEW":"true"})",
         R"("5" "n" "d" 1)"},
        {"MappingViewMO", "getMappingView",
         [](CDeviceManagerImpl& m) {
             return mappingViewValues(handlers::mappingView(m).getMappingView("6"));
         },
         R"("" "" "" 0)", R"({"ID":"6","NAME":"n","DESCRIPTION":"d","ENABLEINBANDCOMMAND":"true"})",
         R"("6" "n" "d" 1)"},
        {"IscsiInitiatorMO",
         "getIscsiInitiator",
         [](CDeviceManagerImpl& m) { return iscsiValues(handlers::iscsi(m).getIscsiInitiator("iqn")); },
         R"("" "" "" "" 0 0 0 false false "0" "0" "" "" "" "" "" "")",
         R"({"ID":"iqn","NAME":"n","PARENTID":"3","PARENTNAME":"pn","PARENTTYPE":"21","HEALTHSTATUS":"1",
             "RUNNINGSTATUS":"28","ISFREE":"true","USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"1",
             "CHAPNAME":"cn","CHAPPASSWORD":"never","CHAPOLDPASSWORD":"never",
             "CHAPNAMEINITATORVERTARGET":"ct","CHAPPASSWORDINITATORVERTARGET":"never",
             "CHAPOLDPASSWORDINITATORVERTARGET":"never"})",
         R"("iqn" "n" "3" "pn" 0 1 28 true true "2" "1" "cn" "" "" "ct" "" "")",
         false,
         {},
         {"PARENTTYPE", "CHAPPASSWORD", "CHAPOLDPASSWORD", "CHAPPASSWORDINITATORVERTARGET",
          "CHAPOLDPASSWORDINITATORVERTARGET"}},
        {"FCInitiatorMO", "getFCInitiator",
         [](CDeviceManagerImpl& m) { return fcValues(handlers::fc(m).getFCInitiator("w")); },
         R"("" "" "" "" 0 0 false)",
         R"({"ID":"w","NAME":"n","PARENTID":"3","PARENTNAME":"pn","HEALTHSTATUS":"1","RUNNINGSTATUS":"28",
             "ISFREE":"true"})",
         R"("w" "n" "3" "pn" 1 28 true)", false},
    };
}
