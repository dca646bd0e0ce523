#include "ArrayTest.h"
#include "Codes.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class SimulatorExposure : public ArrayTest
{
protected:
    static std::string line(const std::string& what, const std::string& lun)
    {
        return what + " LUN " + lun + (what == "exposed" ? " to " : " from ") + "iqn.2001-01.org.example:a\n";
    }
};

TEST_F(SimulatorExposure, WhatInitiatorsBeginAndCeaseToSeeIsLoggedOnceKept)
{
    const std::string group = named("/lungroup/", "lg");
    const auto luns = array.bulkLuns(2, group);
    const std::string server = host("h");
    const std::string hosts = named("/hostgroup", "hg");
    const std::string view = named("/mappingview", "v");
    client.create("/iscsi_initiator",
                  R"({"ID":"iqn.2001-01.org.example:a","PARENTTYPE":21,"PARENTID":")" + server + R"("})");
    associate("POST", "/hostgroup/associate", hosts, 21, server);
    associate("PUT", "/mappingview/create_associate", view, 14, hosts);
    EXPECT_THAT(array.log(), Not(HasSubstr("exposed LUN")));

    associate("PUT", "/mappingview/create_associate", view, 256, group);
    for (const auto& lun : luns) {
        EXPECT_THAT(array.log(), HasSubstr(line("exposed", lun)));
    }
    const Json::Value exposures = array.control("GET", "/exposures");
    ASSERT_EQ(exposures.size(), 2U);
    EXPECT_EQ(exposures[0]["type"], 11);
    EXPECT_EQ(exposures[0]["id"].asString(), luns[0]);

    const std::string later = lun("later");
    associate("POST", "/lungroup/associate", group, 11, later);
    EXPECT_THAT(array.log(), HasSubstr(line("exposed", later)));
    EXPECT_THAT(array.log(), Not(HasSubstr("withdrew")));

    client.put("/iscsi_initiator/remove_iscsi_from_host", R"({"ID":"iqn.2001-01.org.example:a"})");
    for (const auto& lun : {luns[0], luns[1], later}) {
        EXPECT_THAT(array.log(), HasSubstr(line("withdrew", lun)));
    }
    EXPECT_TRUE(array.control("GET", "/exposures").empty());
}

TEST_F(SimulatorExposure, ASecondWayToTheSameInitiatorIsNoNewExposure)
{
    const std::string disk = lun("a");
    const std::string server = host("h");
    client.create("/iscsi_initiator",
                  R"({"ID":"iqn.2001-01.org.example:a","PARENTTYPE":21,"PARENTID":")" + server + R"("})");
    for (const std::string way : {"1", "2"}) {
        const std::string group = named("/lungroup/", "lg" + way);
        const std::string hosts = named("/hostgroup", "hg" + way);
        const std::string view = named("/mappingview", "v" + way);
        associate("POST", "/lungroup/associate", group, 11, disk);
        associate("POST", "/hostgroup/associate", hosts, 21, server);
        associate("PUT", "/mappingview/create_associate", view, 14, hosts);
        associate("PUT", "/mappingview/create_associate", view, 256, group);
    }
    const std::string log = array.log();
    EXPECT_EQ(log.find("exposed LUN"), log.rfind("exposed LUN"));
    client.del("/lungroup/associate?ID=1&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + disk);
    EXPECT_THAT(array.log(), Not(HasSubstr("withdrew")));
    client.del("/lungroup/associate?ID=2&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + disk);
    EXPECT_THAT(array.log(), HasSubstr(line("withdrew", disk)));
}

TEST_F(SimulatorExposure, AnFcInitiatorExposesAndHoldsItsHost)
{
    const std::string wwpn = "21000024ff000001";
    const std::string disk = lun("a");
    const std::string server = host("h");
    const std::string group = named("/lungroup/", "lg");
    const std::string hosts = named("/hostgroup", "hg");
    const std::string view = named("/mappingview", "v");
    client.create("/fc_initiator", R"({"ID":")" + wwpn + R"("})");
    associate("POST", "/lungroup/associate", group, 11, disk);
    associate("PUT", "/mappingview/create_associate", view, 256, group);
    associate("PUT", "/mappingview/create_associate", view, 14, hosts);
    associate("POST", "/hostgroup/associate", hosts, 21, server);
    EXPECT_EQ(client.get("/lun/" + disk).data()["EXPOSEDTOINITIATOR"], "false");

    EXPECT_EQ(
        client.put("/fc_initiator/" + wwpn, R"({"PARENTTYPE":21,"PARENTID":")" + server + R"("})").code(), 0);
    EXPECT_EQ(client.get("/lun/" + disk).data()["EXPOSEDTOINITIATOR"], "true");
    EXPECT_THAT(array.log(), HasSubstr("exposed LUN " + disk + " to " + wwpn + "\n"));
    EXPECT_EQ(array.control("GET", "/exposures")[0]["initiator"], wwpn);
    EXPECT_EQ(client.get("/fc_initiator/associate?ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + server).ids().size(),
              1U);

    client.del("/host/associate?ID=" + hosts + "&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + server);
    EXPECT_THAT(array.log(), HasSubstr("withdrew LUN " + disk + " from " + wwpn + "\n"));
    EXPECT_EQ(client.del("/host/" + server).code(), code::OBJECT_IN_USE);
    EXPECT_EQ(client.del("/fc_initiator/" + wwpn).code(), code::OBJECT_IN_USE);
    EXPECT_EQ(client.put("/fc_initiator/remove_fc_from_host", R"({"ID":")" + wwpn + R"("})").code(), 0);
    EXPECT_EQ(client.del("/host/" + server).code(), 0);
    EXPECT_EQ(client.del("/fc_initiator/" + wwpn).code(), 0);
}

} // namespace
