#include "ArrayTest.h"
#include "Codes.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class SimulatorLun : public ArrayTest
{
protected:
    Reply createWith(const std::string& members)
    {
        return client.post("/lun",
                           R"({"TYPE":11,"NAME":"a","PARENTTYPE":216,"PARENTID":"0",)" + members + "}");
    }
};

TEST_F(SimulatorLun, ACreatedThickLunIsAnsweredWithEveryFieldInItsWireType)
{
    const Reply created = createWith(R"("CAPACITY":2048,"DESCRIPTION":"d","ALLOCTYPE":0,"MIRRORPOLICY":1,
        "WRITEPOLICY":1,"PREFETCHPOLICY":3,"OWNINGCONTROLLER":"0B","DATATRANSFERPOLICY":0,
        "INITIALDISTRIBUTEPOLICY":0)");
    ASSERT_EQ(created.code(), 0) << created.text;
    const Reply read = client.get("/lun/" + created.data()["ID"].asString());
    EXPECT_EQ(read.json, created.json);
    const Json::Value& lun = read.data();
    EXPECT_EQ(lun["ID"], "1");
    EXPECT_EQ(lun["NAME"], "a");
    EXPECT_EQ(lun["PARENTID"], "0");
    EXPECT_EQ(lun["PARENTNAME"], "performance");
    EXPECT_EQ(lun["HEALTHSTATUS"], "1");
    EXPECT_EQ(lun["RUNNINGSTATUS"], "27");
    EXPECT_EQ(lun["DESCRIPTION"], "d");
    EXPECT_EQ(lun["ALLOCTYPE"], "0");
    EXPECT_EQ(lun["CAPACITY"], "2048");
    EXPECT_EQ(lun["ALLOCCAPACITY"], "2048");
    EXPECT_EQ(lun["SECTORSIZE"], "512");
    EXPECT_FALSE(lun.isMember("THINCAPACITYUSAGE"));
    EXPECT_EQ(lun["EXPOSEDTOINITIATOR"], "false");
    EXPECT_EQ(lun["ISADD2LUNGROUP"], "false");
    EXPECT_EQ(lun["OWNINGCONTROLLER"], "0B");
    EXPECT_EQ(lun["WORKINGCONTROLLER"], "0B");
}

TEST_F(SimulatorLun, TheWwnHoldsTheCompanyIdAndEndsInTheLunId)
{
    std::string id;
    for (int i = 0; i < 11; ++i) {
        id = lun("n" + std::to_string(i));
    }
    const std::string wwn = client.get("/lun/" + id).data()["WWN"].asString();
    EXPECT_THAT(wwn, testing::MatchesRegex("6001405[0-9a-f]+"));
    EXPECT_EQ(wwn.size(), 32U);
    EXPECT_EQ(wwn.substr(24), "0000000b");
    const std::string snapshot = array.createSnapshot(id, "s");
    EXPECT_NE(client.get("/SNAPSHOT/" + snapshot).data()["WWN"].asString().substr(0, 24), wwn.substr(0, 24));
}

TEST_F(SimulatorLun, AThinLunTakesOnlyItsInitialAllocationFromThePool)
{
    const auto free = [&] {
        return std::stoull(client.get("/storagepool/2").data()["FREECAPACITY"].asString());
    };
    const unsigned long long before = free();
    const Reply thin = client.post("/lun", R"({"NAME":"t","PARENTID":"2","CAPACITY":8388608,"ALLOCTYPE":1,
        "INITIALALLOCCAPACITY":1024,"THINCAPACITYUSAGE":80})");
    ASSERT_EQ(thin.code(), 0) << thin.text;
    EXPECT_EQ(thin.data()["ALLOCCAPACITY"], "1024");
    EXPECT_EQ(thin.data()["THINCAPACITYUSAGE"], "80");
    EXPECT_EQ(free(), before - 1024);
    EXPECT_EQ(client.del("/lun/" + thin.data()["ID"].asString()).code(), 0);
    EXPECT_EQ(free(), before);
    EXPECT_EQ(client
                  .post("/lun", R"({"NAME":"all","PARENTID":"2","CAPACITY":8,"ALLOCTYPE":1,
        "INITIALALLOCCAPACITY":8})")
                  .data()["ALLOCCAPACITY"],
              "8");
}

TEST_F(SimulatorLun, ALunAboveThePoolsFreeCapacityIsRefusedInWords)
{
    const Reply refused = client.post("/lun", R"({"NAME":"big","PARENTID":"2","CAPACITY":2097153})");
    EXPECT_EQ(refused.code(), code::CAPACITY_SHORT);
    EXPECT_THAT(refused.description(), HasSubstr("2097152 free sectors"));
    EXPECT_EQ(client.post("/lun", R"({"NAME":"big","PARENTID":"2","CAPACITY":2097152})").code(), 0);
    EXPECT_EQ(client.post("/lun", R"({"NAME":"one","PARENTID":"2","CAPACITY":1})").code(),
              code::CAPACITY_SHORT);
    EXPECT_THAT(client.get("/lun").ids(), ElementsAre("1"));
}

TEST_F(SimulatorLun, BadMembersAreRefusedAndLeaveNothingBehind)
{
    EXPECT_EQ(createWith(R"("CAPACITY":"2048")").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":-1)").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":0)").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":1.5)").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("DESCRIPTION":"no capacity")").code(), code::MEMBER_MISSING);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"ALLOCTYPE":2)").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"INITIALALLOCCAPACITY":1)").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"THINCAPACITYUSAGE":1)").code(), code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"ALLOCTYPE":1,"INITIALALLOCCAPACITY":2)").code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"ALLOCTYPE":1,"THINCAPACITYUSAGE":101)").code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"WWN":"6")").code(), code::MEMBER_UNKNOWN);
    EXPECT_EQ(createWith(R"("CAPACITY":1,"CAPACITY":2)").code(), code::BODY_MALFORMED);
    EXPECT_EQ(createWith(R"("CAPACITY":1}{)").code(), code::BODY_MALFORMED);
    EXPECT_EQ(client.post("/lun", R"({"TYPE":12,"NAME":"a","PARENTID":"0","CAPACITY":1})").code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(client.post("/lun", R"({"NAME":"a","PARENTTYPE":21,"PARENTID":"0","CAPACITY":1})").code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(client.post("/lun", R"({"NAME":"a","PARENTID":"99","CAPACITY":1})").code(),
              code::OBJECT_MISSING);
    EXPECT_EQ(client.post("/lun", R"({"NAME":"a","CAPACITY":1})").code(), code::MEMBER_MISSING);
    EXPECT_THAT(client.get("/lun").ids(), IsEmpty());
}

TEST_F(SimulatorLun, TheIdMayBeChosenButNotTwice)
{
    EXPECT_EQ(createWith(R"("CAPACITY":1,"ID":"40")").data()["ID"], "40");
    EXPECT_EQ(client.post("/lun", R"({"ID":"40","NAME":"b","PARENTID":"0","CAPACITY":1})").code(),
              code::ID_TAKEN);
    EXPECT_EQ(client.post("/lun", R"({"ID":"07","NAME":"b","PARENTID":"0","CAPACITY":1})").code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(lun("next"), "41");
}

TEST_F(SimulatorLun, IdsOfDeletedLunsAreNotGivenAgain)
{
    EXPECT_EQ(lun("a"), "1");
    EXPECT_EQ(client.del("/lun/1").code(), 0);
    EXPECT_EQ(lun("a"), "2");
    EXPECT_EQ(client.get("/lun/1").code(), code::OBJECT_MISSING);
}

TEST_F(SimulatorLun, TenThousandLunsAreMadeAtOnceAndListedInPages)
{
    const std::string group = named("/lungroup/", "g");
    EXPECT_EQ(array.bulkLuns(10000, group).size(), 10000U);
    const std::string of = "ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group;
    EXPECT_EQ(client.get("/lun/count?" + of).data()["COUNT"], "10000");
    const Reply page = client.get("/lun/associate?TYPE=11&" + of + "&range=[9998-10098]");
    EXPECT_THAT(page.ids(), ElementsAre("9999", "10000"));
    const Reply one = client.get("/lun/associate?filter=ID:5000&TYPE=11&" + of + "&range=[0-65535]");
    EXPECT_THAT(one.ids(), ElementsAre("5000"));
}

} // namespace
