#include "unit/handlers/RecordTest.h"

namespace {

std::string fcPortValues(const FCPortMO& r)
{
    using R = FCPortMO;
    return shownAll(r, &R::ID, &R::NAME, &R::LOCATION, &R::HEALTHSTATUS, &R::RUNNINGSTATUS, &R::LOGICTYPE,
                    &R::RUNSPEED, &R::CONFSPEED, &R::WWN, &R::INIORTGT, &R::FCRUNMODE, &R::LOSTSIGNALS,
                    &R::BADCHARNUMBER, &R::LOSTSYNC, &R::LINKFAIL, &R::STARTTIME, &R::FLOGINDELAYTIMES,
                    &R::MAXSUPPORTSPEED);
}

std::string fcoePortValues(const FCoEPortMO& r)
{
    using R = FCoEPortMO;
    return shownAll(r, &R::ID, &R::NAME, &R::LOCATION, &R::HEALTHSTATUS, &R::RUNNINGSTATUS, &R::LOGICTYPE,
                    &R::RUNSPEED, &R::WWN, &R::INIORTGT, &R::ERRORPACKETS, &R::LOSTPACKETS,
                    &R::OVERFLOWEDPACKETS, &R::STARTTIME, &R::VLANID);
}

std::string ethPortValues(const ETHPortMO& r)
{
    using R = ETHPortMO;
    return shownAll(r, &R::ID, &R::NAME, &R::LOCATION, &R::HEALTHSTATUS, &R::RUNNINGSTATUS, &R::LOGICTYPE,
                    &R::MACADDRESS, &R::INIORTGT, &R::MTU, &R::ISCSITCPPORT, &R::ISCSINAME, &R::ERRORPACKETS,
                    &R::LOSTPACKETS, &R::OVERFLOWEDPACKETS, &R::STARTTIME, &R::SPEED, &R::IPV4MASK,
                    &R::IPV4ADDRESS, &R::IPV6MASK, &R::IPV6ADDRESS);
}

} // namespace

std::vector<RecordCase> portRecords()
{
    return {
        {"FCPortMO", "getFCPort",
         [](CDeviceManagerImpl& m) { return fcPortValues(handlers::fcPort(m).getFCPort("7")); },
         R"("" "" "" 0 0 100 0 max "" 0 100 max max max max max max max)",
         R"({"ID":"7","NAME":"n","LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0",
             "RUNSPEED":"16000","CONFSPEED":"2","WWN":"6c","INIORTGT":"3","FCRUNMODE":"4","LOSTSIGNALS":"5",
             "BADCHARNUMBER":"6","LOSTSYNC":"7","LINKFAIL":"8","STARTTIME":"1700000000",
             "FLOGINDELAYTIMES":"9","MAXSUPPORTSPEED":"32000"})",
         R"("7" "n" "l" 1 10 0 16000 2 "6c" 3 4 5 6 7 8 1700000000 9 32000)"},
        {"FCoEPortMO", "getFCoEPort",
         [](CDeviceManagerImpl& m) { return fcoePortValues(handlers::fcoePort(m).getFCoEPort("7")); },
         R"("" "" "" 0 0 100 0 "" 0 max max max max "")",
         R"({"ID":"7","NAME":"n","LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0",
             "RUNSPEED":"-1","WWN":"6d","INIORTGT":"3","ERRORPACKETS":"4","LOSTPACKETS":"5",
             "OVERFLOWEDPACKETS":"6","STARTTIME":"7","VLANID":"v"})",
         R"("7" "n" "l" 1 10 0 -1 "6d" 3 4 5 6 7 "v")"},
        {"ETHPortMO", "getETHPort",
         [](CDeviceManagerImpl& m) { return ethPortValues(handlers::ethPort(m).getETHPort("7")); },
         R"("" "" "" 0 0 100 "" 0 max "" "" max max max max max "" "" "" "")",
         R"({"ID":"7","NAME":"n","LOCATION":"l","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0",
             "MACADDRESS":"02:00","INIORTGT":"3","MTU":"1500","ISCSITCPPORT":"3260","ISCSINAME":"iqn",
             "ERRORPACKETS":"4","LOSTPACKETS":"5","OVERFLOWEDPACKETS":"6","STARTTIME":"7","SPEED":"10000",
             "IPV4MASK":"255.255.255.0","IPV4ADDRESS":"192.0.2.1","IPV6MASK":"64","IPV6ADDRESS":"2001:db8::1"})",
         R"("7" "n" "l" 1 10 0 "02:00" 3 1500 "3260" "iqn" 4 5 6 7 10000 "255.255.255.0" "192.0.2.1" "64" "2001:db8::1")"},
    };
}
