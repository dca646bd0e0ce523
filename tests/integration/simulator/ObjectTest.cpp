#include "ArrayTest.h"
#include "Codes.h"

using testing::HasSubstr;

namespace {

class SimulatorObject : public ArrayTest
{
};

TEST_F(SimulatorObject, AnUnknownIdIsAnErrorThatNamesTheObject)
{
    for (const std::string resource :
         {"lun", "lungroup", "host", "hostgroup", "mappingview", "SNAPSHOT", "iscsi_initiator",
          "fc_initiator", "FC_PORT", "FCoE_PORT", "ETH_PORT"}) {
        const Reply reply = client.get("/" + resource + "/99");
        EXPECT_EQ(reply.code(), code::OBJECT_MISSING) << resource;
        EXPECT_THAT(reply.description(), HasSubstr("99 does not exist"));
        EXPECT_FALSE(reply.json.isMember("data"));
    }
    EXPECT_EQ(client.del("/lun/99").code(), code::OBJECT_MISSING);
    EXPECT_EQ(client.put("/lun/99", "{}").code(), code::OBJECT_MISSING);
}

TEST_F(SimulatorObject, NamesAreUniqueWithinOneType)
{
    named("/lungroup/", "same");
    EXPECT_EQ(client.post("/lungroup/", R"({"NAME":"same"})").code(), code::NAME_TAKEN);
    EXPECT_EQ(client.post("/hostgroup", R"({"NAME":"same"})").code(), 0);
    const std::string other = named("/lungroup/", "other");
    EXPECT_EQ(client.put("/lungroup/" + other, R"({"NAME":"same"})").code(), code::NAME_TAKEN);
    EXPECT_EQ(client.put("/lungroup/" + other, R"({"NAME":"other"})").code(), 0);
    EXPECT_EQ(client.put("/lungroup/" + other, R"({"NAME":"third"})").code(), 0);
    EXPECT_EQ(client.post("/lungroup/", R"({"NAME":"other"})").code(), 0);
}

TEST_F(SimulatorObject, AnIdIsNotChanged)
{
    const std::string id = named("/lungroup/", "g");
    EXPECT_EQ(client.put("/lungroup/" + id, R"({"ID":"7","DESCRIPTION":"d"})").code(), code::MEMBER_INVALID);
    EXPECT_EQ(client.put("/lungroup/" + id, R"({"ID":")" + id + R"(","DESCRIPTION":"d"})").code(), 0);
    EXPECT_EQ(client.get("/lungroup/" + id).data()["DESCRIPTION"], "d");
    EXPECT_EQ(client.get("/lungroup/7").code(), code::OBJECT_MISSING);
}

TEST_F(SimulatorObject, NamesAreNonEmptyUtf8OfBoundedLength)
{
    const auto create = [&](const std::string& name) {
        return client.post("/hostgroup", R"({"NAME":")" + name + R"("})").code();
    };
    EXPECT_EQ(create(""), code::MEMBER_INVALID);
    EXPECT_EQ(create(std::string(255, 'x')), 0);
    EXPECT_EQ(create(std::string(256, 'x')), code::MEMBER_INVALID);
    EXPECT_EQ(create("a\\u0007b"), code::MEMBER_INVALID);
    EXPECT_EQ(create("\xc3"), code::MEMBER_INVALID);
    EXPECT_EQ(create("\xc0\xaf"), code::MEMBER_INVALID);
    EXPECT_EQ(create("\xed\xa0\x80"), code::MEMBER_INVALID);
    const std::string name = "gr\xc3\xb6\xc3\x9f\x65 \xe2\x82\xac & #1/2";
    EXPECT_EQ(create(name), 0);
    EXPECT_EQ(client.get("/hostgroup/2").data()["NAME"].asString(), name);
}

TEST_F(SimulatorObject, ALunGroupAnswersItsTypesAsTexts)
{
    const Reply made =
        client.post("/lungroup/", R"({"TYPE":256,"NAME":"g","DESCRIPTION":"d","APPTYPE":3,"GROUPTYPE":0})");
    EXPECT_EQ(made.data()["APPTYPE"], "3");
    EXPECT_EQ(made.data()["GROUPTYPE"], "0");
    EXPECT_EQ(made.data()["ISADD2MAPPINGVIEW"], "false");
    EXPECT_EQ(client.post("/lungroup/", R"({"NAME":"h","APPTYPE":"3"})").code(), code::MEMBER_INVALID);
}

TEST_F(SimulatorObject, AHostAnswersItsParentTypeAsANumber)
{
    const std::string group = named("/hostgroup", "g");
    const Reply alone = client.post(
        "/host", R"({"TYPE":21,"NAME":"a","OPERATIONSYSTEM":100,"LOCATION":"here","IP":"192.0.2.1"})");
    ASSERT_EQ(alone.code(), 0) << alone.text;
    EXPECT_TRUE(alone.data()["PARENTTYPE"].isUInt());
    EXPECT_EQ(alone.data()["PARENTTYPE"].asUInt(), 0U);
    EXPECT_EQ(alone.data()["OPERATIONSYSTEM"], "100");
    EXPECT_EQ(alone.data()["IP"], "192.0.2.1");
    EXPECT_EQ(alone.data()["ISADD2HOSTGROUP"], "false");
    const Reply inGroup = client.post(
        "/host", R"({"NAME":"b","OPERATIONSYSTEM":0,"PARENTTYPE":14,"PARENTID":")" + group + R"("})");
    EXPECT_EQ(inGroup.data()["PARENTTYPE"].asUInt(), 14U);
    EXPECT_EQ(inGroup.data()["PARENTID"].asString(), group);
    EXPECT_EQ(inGroup.data()["ISADD2HOSTGROUP"], "true");
    EXPECT_EQ(client.post("/host", R"({"NAME":"c","OPERATIONSYSTEM":0,"PARENTTYPE":14})").code(),
              code::MEMBER_MISSING);
    EXPECT_EQ(client.post("/host", R"({"NAME":"c"})").code(), code::MEMBER_MISSING);
}

TEST_F(SimulatorObject, AMappingViewTakesItsFlagAsABooleanAndAnswersAText)
{
    const Reply made = client.post("/mappingview", R"({"TYPE":245,"NAME":"v","ENABLEINBANDCOMMAND":true})");
    EXPECT_EQ(made.data()["ENABLEINBANDCOMMAND"], "true");
    EXPECT_EQ(client.post("/mappingview", R"({"NAME":"w","ENABLEINBANDCOMMAND":1})").code(),
              code::MEMBER_INVALID);
}

TEST_F(SimulatorObject, ASnapshotCopiesItsLunsCapacityAndHoldsTheLun)
{
    const std::string source = lun("a");
    const Reply made =
        client.post("/snapshot", R"({"NAME":"s","PARENTTYPE":11,"PARENTID":")" + source + R"("})");
    ASSERT_EQ(made.code(), 0) << made.text;
    const Reply read = client.get("/SNAPSHOT/" + made.data()["ID"].asString());
    EXPECT_EQ(read.data()["USERCAPACITY"], "2048");
    EXPECT_EQ(read.data()["CONSUMEDCAPACITY"], "0");
    EXPECT_EQ(read.data()["PARENTTYPE"].asInt(), 11);
    EXPECT_EQ(read.data()["PARENTNAME"], "a");
    EXPECT_EQ(client.del("/lun/" + source).code(), code::OBJECT_IN_USE);
    EXPECT_EQ(client.del("/snapshot/" + read.data()["ID"].asString()).code(), 0);
    EXPECT_EQ(client.del("/lun/" + source).code(), 0);
}

TEST_F(SimulatorObject, SettlingObjectsRefuseTheirFirstReadsOnly)
{
    array.settle(2);
    const std::string id = named("/hostgroup", "g");
    EXPECT_EQ(client.get("/hostgroup/" + id).code(), code::OBJECT_SETTLING);
    EXPECT_EQ(client.get("/hostgroup/" + id).code(), code::OBJECT_SETTLING);
    EXPECT_EQ(client.get("/hostgroup/" + id).code(), 0);
    EXPECT_EQ(client.get("/hostgroup/" + id).code(), 0);
}

TEST(SimulatorSettle, LunGroupsSettleWithACodeOfTheirOwnFirst)
{
    tessel_test::ArraySimOptions options;
    options.arguments = {"--settle", "1", "--settle-lungroup", "2"};
    const tessel_test::ArraySim array(options);
    ArrayClient client(array);
    client.login();
    const std::string group = client.create("/lungroup/", R"({"NAME":"g"})");
    const std::string lun = client.create("/lun", R"({"NAME":"a","PARENTID":"0","CAPACITY":1})");
    EXPECT_EQ(client.get("/lungroup/" + group).code(), code::LUN_GROUP_SETTLING);
    EXPECT_EQ(client.get("/lungroup/" + group).code(), code::LUN_GROUP_SETTLING);
    EXPECT_EQ(client.get("/lungroup/" + group).code(), code::OBJECT_SETTLING);
    EXPECT_EQ(client.get("/lungroup/" + group).code(), 0);
    EXPECT_EQ(client.get("/lun/" + lun).code(), code::OBJECT_SETTLING);
    EXPECT_EQ(client.get("/lun/" + lun).code(), 0);
}

TEST_F(SimulatorObject, APoolIsFoundByItsName)
{
    const std::string name = client.get("/storagepool/1").data()["NAME"].asString();
    EXPECT_THAT(client.get("/storagepool?filter=NAME:" + name).ids(), testing::ElementsAre("1"));
}

TEST_F(SimulatorObject, UnknownResourcesAndMethodsAreRefused)
{
    EXPECT_EQ(client.get("/volumes").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.get("/LUN/1").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.get("/lun/1/2").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.get("//lun").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.del("/lun").code(), code::METHOD_UNSUPPORTED);
    EXPECT_EQ(client.post("/lun/1", "{}").code(), code::METHOD_UNSUPPORTED);
    EXPECT_EQ(client.put("/lun/associate", "{}").code(), code::METHOD_UNSUPPORTED);
    EXPECT_EQ(client.post("/storagepool", R"({"NAME":"p"})").code(), code::METHOD_UNSUPPORTED);
}

TEST_F(SimulatorObject, AnEncodedSlashInAnIdReachesNoOtherResource)
{
    const std::string id = lun("a");
    EXPECT_EQ(client.get("/lun/..%2Flun%2F" + id).code(), code::OBJECT_MISSING);
    EXPECT_EQ(client.get("/lun/%31").data()["ID"], "1");
    EXPECT_EQ(client.get("/lun/%2531").code(), code::OBJECT_MISSING);
    EXPECT_EQ(client.get("/lun/%3").code(), code::QUERY_MALFORMED);
    EXPECT_EQ(client.get("/lun/1%00").code(), code::OBJECT_MISSING);
    EXPECT_EQ(client.get("/lun/1%3Ffilter=x").code(), code::OBJECT_MISSING);
}

} // namespace
