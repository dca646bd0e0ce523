#include "ArrayTest.h"

#include "Codes.h"
#include <sstream>
#include <stdexcept>

using testing::HasSubstr;
using testing::Not;

namespace {

class SimulatorWatch : public ArrayTest
{
};

TEST_F(SimulatorWatch, RequestsAreCountedByMethodAndResource)
{
    array.resetCounters();
    lun("a");
    lun("b");
    client.get("/lun/1");
    client.get("/lun/2");
    client.get("/SNAPSHOT/7");
    client.get("/lun/associate?ASSOCIATEOBJTYPE=216&ASSOCIATEOBJID=0");
    client.put("/iscsi_initiator/remove_iscsi_from_host", "{}");
    EXPECT_EQ(array.requests("POST", "/lun"), 2U);
    EXPECT_EQ(array.requests("GET", "/lun/{id}"), 2U);
    EXPECT_EQ(array.requests("GET", "/SNAPSHOT/{id}"), 1U);
    EXPECT_EQ(array.requests("GET", "/lun/associate"), 1U);
    EXPECT_EQ(array.requests("PUT", "/iscsi_initiator/remove_iscsi_from_host"), 1U);
    EXPECT_EQ(array.requests("DELETE", "/lun/{id}"), 0U);
}

TEST_F(SimulatorWatch, OneKeptAliveConnectionIsOneHandshake)
{
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(client.get("/server/logininfo").code(), 0);
    }
    EXPECT_EQ(array.counters()["connections"].asUInt(), 1U);
    EXPECT_EQ(array.counters()["handshakes"].asUInt(), 1U);
    ArrayClient other(array);
    other.login();
    EXPECT_EQ(array.counters()["connections"].asUInt(), 2U);
    EXPECT_EQ(array.counters()["handshakes"].asUInt(), 2U);
    array.resetCounters();
    EXPECT_EQ(array.counters()["connections"].asUInt(), 0U);
    EXPECT_EQ(array.counters()["handshakes"].asUInt(), 0U);
    EXPECT_TRUE(array.counters()["requests"].empty());
}

TEST_F(SimulatorWatch, TheMostSessionsAtATimeAreCounted)
{
    EXPECT_EQ(array.counters()["sessionsHighest"].asUInt(), 1U) << "the fixture's";
    {
        ArrayClient other(array);
        other.login();
        EXPECT_EQ(other.del("/sessions").code(), 0);
    }
    EXPECT_EQ(array.counters()["sessions"].asUInt(), 1U);
    EXPECT_EQ(array.counters()["sessionsHighest"].asUInt(), 2U);
    array.resetCounters();
    EXPECT_EQ(array.counters()["sessionsHighest"].asUInt(), 1U);
}

TEST_F(SimulatorWatch, AConnectionWithoutAHandshakeIsCountedAsSuch)
{
    array.resetCounters();
    httplib::Client plain(array.ip(), static_cast<int>(array.port()));
    EXPECT_FALSE(plain.Get("/"));
    EXPECT_EQ(array.counters()["connections"].asUInt(), 1U);
    EXPECT_EQ(array.counters()["handshakes"].asUInt(), 0U);
}

TEST_F(SimulatorWatch, TheJournalHoldsRequestsAsSentWithoutSecrets)
{
    array.clearJournal();
    client.post("/lun", R"({"NAME":"z","CAPACITY":1,"PARENTID":"0"})");
    client.get("/lun/associate?filter=NAME:a%20b&TYPE=11&ASSOCIATEOBJTYPE=216&ASSOCIATEOBJID=0");
    client.login();
    client.post("/lun", "password=top");
    const Json::Value journal = array.journal();
    ASSERT_EQ(journal.size(), 4U);
    EXPECT_EQ(journal[0]["method"], "POST");
    EXPECT_EQ(journal[0]["path"], "/lun");
    EXPECT_EQ(journal[0]["body"], R"({"NAME":"z","CAPACITY":1,"PARENTID":"0"})");
    EXPECT_EQ(journal[0]["contentType"], "application/json");
    EXPECT_EQ(journal[0]["connection"], journal[1]["connection"]);
    EXPECT_EQ(journal[1]["path"],
              "/lun/associate?filter=NAME:a%20b&TYPE=11&ASSOCIATEOBJTYPE=216&ASSOCIATEOBJID=0");
    EXPECT_EQ(journal[2]["path"], "/sessions");
    EXPECT_THAT(journal[2]["body"].asString(), HasSubstr("\"***\""));
    EXPECT_EQ(journal[3]["code"].asInt(), code::BODY_MALFORMED);
    const std::string everything = journal.toStyledString() + array.log();
    EXPECT_THAT(everything, Not(HasSubstr(array.password())));
    EXPECT_THAT(everything, Not(HasSubstr("top")));
    EXPECT_THAT(everything, Not(HasSubstr(client.token)));
    EXPECT_THAT(everything, Not(HasSubstr(client.cookie)));
}

TEST_F(SimulatorWatch, TheJournalIsReadFromANumberOn)
{
    array.clearJournal();
    client.get("/lun");
    client.get("/host");
    const Json::Value all = array.journal();
    ASSERT_EQ(all.size(), 2U);
    const auto since = [&](const Json::Value& entry) {
        return array.control("GET", "/journal?since=" + entry["number"].asString());
    };
    ASSERT_EQ(since(all[0]).size(), 1U);
    EXPECT_EQ(since(all[0])[0]["path"], "/host");
    EXPECT_TRUE(since(all[1]).empty());
}

TEST_F(SimulatorWatch, AJournalBeginsWithTheFirstRequest)
{
    const Json::Value all = array.journal();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all[0]["number"].asUInt(), 1U);
    EXPECT_EQ(all[0]["path"], "/sessions");
}

TEST_F(SimulatorWatch, TheLogNamesTheFaultThatStruck)
{
    array.addFault(R"({"path":"/host","action":"error","code":5})");
    client.get("/lun");
    client.get("/host");
    EXPECT_THAT(array.log(), HasSubstr("GET /host status=200 code=5 fault=1 "));
    EXPECT_THAT(array.log(), Not(HasSubstr("fault=0")));
    EXPECT_THAT(array.log(), testing::ContainsRegex("GET /lun status=200 code=0 [0-9.]+ms"));
}

TEST_F(SimulatorWatch, ACookieInPlaceOfATypeIsNotShown)
{
    array.clearJournal();
    client.raw("GET", "/deviceManager/rest/x/lun", "",
               {{"Content-Type", client.cookie.substr(client.cookie.find('=') + 1)}});
    EXPECT_EQ(array.journal()[0]["contentType"], "");
}

TEST_F(SimulatorWatch, AStrangersBodyIsToldByItsSizeAlone)
{
    array.clearJournal();
    client.token = "none";
    client.post("/lun", R"({"NAME":"z"})");
    EXPECT_EQ(array.journal()[0]["body"], "<12 bytes>");
}

TEST_F(SimulatorWatch, ResetPutsTheFactoryStateBack)
{
    const std::string group = named("/lungroup/", "g");
    array.bulkLuns(3, group);
    array.settle(1);
    array.addErrorFault("*", "*", 5, 0);
    array.reset();
    EXPECT_EQ(client.get("/lun").code(), code::SESSION_INVALID);
    ASSERT_EQ(client.login().code(), 0);
    EXPECT_TRUE(client.get("/lun").data().isNull());
    EXPECT_TRUE(client.get("/lungroup").data().isNull());
    EXPECT_EQ(client.get("/storagepool").ids().size(), 3U);
    EXPECT_EQ(client.get("/storagepool/0").data()["FREECAPACITY"],
              client.get("/storagepool/0").data()["TOTALCAPACITY"]);
    EXPECT_EQ(lun("a"), "1");
    EXPECT_EQ(client.get("/lun/1").code(), 0);
}

TEST_F(SimulatorWatch, StatesAndSizesCanBeSet)
{
    lun("a");
    const auto set = [&](const std::string& path, const char* key, unsigned value) {
        Json::Value wanted;
        wanted[key] = value;
        array.control("PUT", "/state" + path, wanted);
    };
    set("/lun/1", "HEALTHSTATUS", 2);
    set("/lun/1", "RUNNINGSTATUS", 28);
    EXPECT_EQ(client.get("/lun/1").data()["HEALTHSTATUS"], "2");
    EXPECT_EQ(client.get("/lun/1").data()["RUNNINGSTATUS"], "28");
    set("/ETH_PORT/2", "RUNNINGSTATUS", 11);
    EXPECT_EQ(client.get("/ETH_PORT/2").data()["RUNNINGSTATUS"], "11");
    const auto freeBefore = std::stoull(client.get("/storagepool/0").data()["FREECAPACITY"].asString());
    set("/lun/1", "CAPACITY", 4096);
    EXPECT_EQ(client.get("/lun/1").data()["CAPACITY"], "4096");
    EXPECT_EQ(client.get("/lun/1").data()["ALLOCCAPACITY"], "4096");
    EXPECT_EQ(client.get("/storagepool/0").data()["FREECAPACITY"], std::to_string(freeBefore - 2048));
    set("/storagepool/0", "TOTALCAPACITY", 1000);
    EXPECT_EQ(client.get("/storagepool/0").data()["FREECAPACITY"], "0") << "less than is allocated";
    EXPECT_EQ(client.post("/lun", R"({"NAME":"b","PARENTID":"0","CAPACITY":1})").code(),
              code::CAPACITY_SHORT);
    Json::Value wwn;
    wwn["WWN"] = "6";
    EXPECT_THROW(array.control("PUT", "/state/lun/1", wwn), std::runtime_error) << "it follows from the ID";
    EXPECT_THROW(set("/lun/1", "WWN", 1), std::runtime_error);
    EXPECT_THROW(set("/storagepool/0", "FREECAPACITY", 5), std::runtime_error) << "it follows from the LUNs";
    EXPECT_THROW(set("/lun/1", "NAME", 1), std::runtime_error);
    EXPECT_THROW(set("/lun/9", "HEALTHSTATUS", 1), std::runtime_error);
    EXPECT_THROW(set("/luns/1", "HEALTHSTATUS", 1), std::runtime_error);
}

TEST_F(SimulatorWatch, LunsMadeAtOnceHaveAMebibyteUnlessAskedForOtherwise)
{
    const std::string id = array.bulkLuns(1)[0];
    EXPECT_EQ(client.get("/lun/" + id).data()["CAPACITY"], "2048");
    EXPECT_EQ(client.get("/lun/" + id).data()["NAME"].asString(), "bulk_" + id);
    EXPECT_EQ(client.get("/lun/" + id).data()["ISADD2LUNGROUP"], "false");
    Json::Value wanted;
    wanted["count"] = 1;
    wanted["sectors"] = 4096;
    const Json::Value made = array.control("POST", "/bulk/luns", wanted)["ids"];
    EXPECT_EQ(client.get("/lun/" + made[0].asString()).data()["CAPACITY"], "4096");
}

TEST_F(SimulatorWatch, ARefusalIsOneForControlTooByItsStatus)
{
    httplib::Client control("127.0.0.1", static_cast<int>(array.controlPort()));
    EXPECT_EQ(control.Get("/objects/lun")->status, 200);
    EXPECT_EQ(control.Get("/objects/lun/99")->status, 400);
    EXPECT_EQ(control.Delete("/faults/99")->status, 400);
}

TEST_F(SimulatorWatch, PoolsCanBeAdded)
{
    Json::Value wanted;
    wanted["NAME"] = "further";
    wanted["TOTALCAPACITY"] = 10;
    for (const char* refused :
         {R"({"NAME":"p"})", R"({"NAME":"p","TOTALCAPACITY":-1})", R"({"TOTALCAPACITY":1})"}) {
        Json::Value body;
        std::istringstream(refused) >> body;
        EXPECT_THROW(array.control("POST", "/pools", body), std::runtime_error) << refused;
    }
    const std::string pool = array.control("POST", "/pools", wanted)["ID"].asString();
    EXPECT_EQ(pool, "3");
    EXPECT_EQ(client.post("/lun", R"({"NAME":"b","PARENTID":"3","CAPACITY":11})").code(),
              code::CAPACITY_SHORT);
    EXPECT_EQ(client.post("/lun", R"({"NAME":"b","PARENTID":"3","CAPACITY":10})").code(), 0);
}

} // namespace
