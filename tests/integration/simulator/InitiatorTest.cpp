#include "ArrayTest.h"
#include "Codes.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string iqn = "iqn.2001-01.org.example:a";

class SimulatorInitiator : public ArrayTest
{
protected:
    Reply create(const std::string& members)
    {
        return client.post("/iscsi_initiator", R"({"ID":")" + iqn + R"(",)" + members + "}");
    }
    Reply modify(const std::string& members)
    {
        return client.put("/iscsi_initiator", R"({"ID":")" + iqn + R"(",)" + members + "}");
    }
    Json::Value read() { return client.get("/iscsi_initiator/" + iqn).data(); }
};

TEST_F(SimulatorInitiator, WithoutChapItIsFreeAndAnswersItsModes)
{
    EXPECT_EQ(create(R"("USECHAP":"false","NAME":"first")").code(), 0);
    const Json::Value initiator = read();
    EXPECT_EQ(initiator["ID"].asString(), iqn);
    EXPECT_EQ(initiator["NAME"], "first");
    EXPECT_EQ(initiator["ISFREE"], "true");
    EXPECT_EQ(initiator["USECHAP"], "false");
    EXPECT_EQ(initiator["NORMALVERMODE"], "0");
    EXPECT_EQ(initiator["DISCOVERYVERMODE"], "0");
    EXPECT_EQ(initiator["PARENTID"], "");
}

TEST_F(SimulatorInitiator, SecretsAreKeptButNeverAnsweredNorLogged)
{
    const Reply made = create(R"("USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"0","CHAPNAME":"one",
        "CHAPPASSWORD":"s3cret-one","CHAPNAMEINITATORVERTARGET":"two","CHAPPASSWORDINITATORVERTARGET":"s3cret-two")");
    ASSERT_EQ(made.code(), 0) << made.text;
    const Reply answer = client.get("/iscsi_initiator/" + iqn);
    EXPECT_EQ(answer.data()["CHAPNAME"], "one");
    EXPECT_EQ(answer.data()["CHAPNAMEINITATORVERTARGET"], "two");
    for (const auto& text : {made.text, answer.text, array.journal().toStyledString(), array.log(),
                             client.get("/iscsi_initiator").text}) {
        EXPECT_THAT(text, Not(HasSubstr("s3cret")));
        EXPECT_THAT(text, Not(HasSubstr(array.password())));
    }
}

TEST_F(SimulatorInitiator, ChapWithoutNamesAndSecretsIsRefused)
{
    EXPECT_EQ(
        create(
            R"("USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"0","CHAPNAME":"","CHAPPASSWORD":"")")
            .code(),
        code::CHAP_INCOMPLETE);
    EXPECT_EQ(create(R"("USECHAP":"true","NORMALVERMODE":"0","DISCOVERYVERMODE":"0")").code(),
              code::CHAP_INCOMPLETE);
    EXPECT_EQ(
        create(
            R"("USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"0","CHAPNAME":"n","CHAPPASSWORD":"p")")
            .code(),
        code::CHAP_INCOMPLETE);
    EXPECT_EQ(
        create(
            R"("USECHAP":"true","NORMALVERMODE":"3","DISCOVERYVERMODE":"0","CHAPNAME":"n","CHAPPASSWORD":"p")")
            .code(),
        code::MEMBER_INVALID);
    EXPECT_EQ(
        create(
            R"("USECHAP":"true","NORMALVERMODE":1,"DISCOVERYVERMODE":"0","CHAPNAME":"n","CHAPPASSWORD":"p")")
            .code(),
        code::MEMBER_INVALID);
    EXPECT_EQ(client.get("/iscsi_initiator/" + iqn).code(), code::OBJECT_MISSING);
}

TEST_F(SimulatorInitiator, ASecretIsChangedOnlyWithTheCurrentOne)
{
    const std::string on = R"("USECHAP":"true","NORMALVERMODE":"1","DISCOVERYVERMODE":"0","CHAPNAME":"n",)";
    ASSERT_EQ(create(on + R"("CHAPPASSWORD":"first")").code(), 0);
    EXPECT_EQ(modify(on + R"("CHAPPASSWORD":"second")").code(), code::CHAP_OLD_SECRET_WRONG);
    EXPECT_EQ(modify(on + R"("CHAPPASSWORD":"second","CHAPOLDPASSWORD":"wrong")").code(),
              code::CHAP_OLD_SECRET_WRONG);
    EXPECT_EQ(modify(on + R"("CHAPPASSWORD":"second","CHAPOLDPASSWORD":"first")").code(), 0);
    EXPECT_EQ(modify(on + R"("CHAPPASSWORD":"third","CHAPOLDPASSWORD":"first")").code(),
              code::CHAP_OLD_SECRET_WRONG);
    EXPECT_EQ(modify(R"("USECHAP":"false")").code(), 0);
    EXPECT_EQ(read()["USECHAP"], "false");
    EXPECT_EQ(read()["CHAPNAME"], "");
    EXPECT_EQ(modify(on + R"("CHAPPASSWORD":"fourth")").code(), 0)
        << "off means that there is no current one";
}

TEST_F(SimulatorInitiator, AMutualSecretNeedsTheCurrentOneOnlyWhileMutualChapIsOn)
{
    const std::string base = R"("USECHAP":"true","DISCOVERYVERMODE":"0","NORMALVERMODE":)";
    ASSERT_EQ(create(base + R"("1","CHAPNAME":"n","CHAPPASSWORD":"p")").code(), 0);
    const std::string mutual = base + R"("2","CHAPNAMEINITATORVERTARGET":"m",)";
    EXPECT_EQ(modify(mutual + R"("CHAPPASSWORDINITATORVERTARGET":"q")").code(), 0);
    EXPECT_EQ(modify(mutual + R"("CHAPPASSWORDINITATORVERTARGET":"r")").code(), code::CHAP_OLD_SECRET_WRONG);
    EXPECT_EQ(modify(mutual + R"("CHAPPASSWORDINITATORVERTARGET":"r","CHAPOLDPASSWORDINITATORVERTARGET":"q")")
                  .code(),
              0);
    EXPECT_EQ(modify(base + R"("1")").code(), 0);
    EXPECT_EQ(read()["CHAPNAMEINITATORVERTARGET"], "");
    EXPECT_EQ(modify(mutual + R"("CHAPPASSWORDINITATORVERTARGET":"s")").code(), 0);
}

TEST_F(SimulatorInitiator, ItBelongsToOneHostAtMost)
{
    const std::string first = host("first");
    const std::string second = host("second");
    ASSERT_EQ(create(R"("USECHAP":"false")").code(), 0);
    const auto bindTo = [&](const std::string& id) {
        return client.put("/iscsi_initiator/" + iqn, R"({"PARENTTYPE":21,"PARENTID":")" + id + R"("})")
            .code();
    };
    EXPECT_EQ(bindTo("99"), code::OBJECT_MISSING);
    EXPECT_EQ(bindTo(first), 0);
    EXPECT_EQ(bindTo(first), 0) << "where it is already is no move";
    EXPECT_EQ(bindTo(second), code::ASSOCIATION_FULL);
    EXPECT_EQ(read()["ISFREE"], "false");
    EXPECT_EQ(read()["PARENTID"].asString(), first);
    EXPECT_EQ(read()["PARENTNAME"], "first");
    EXPECT_THAT(client.get("/iscsi_initiator/associate?ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + first).ids(),
                ElementsAre(iqn));
    EXPECT_EQ(client.del("/host/" + first).code(), code::OBJECT_IN_USE);
    EXPECT_EQ(client.del("/iscsi_initiator/" + iqn).code(), code::OBJECT_IN_USE);
    EXPECT_EQ(client.put("/iscsi_initiator/remove_iscsi_from_host", R"({"ID":")" + iqn + R"("})").code(), 0);
    EXPECT_EQ(client.put("/iscsi_initiator/remove_iscsi_from_host", R"({"ID":")" + iqn + R"("})").code(),
              code::ASSOCIATION_MISSING);
    EXPECT_EQ(read()["ISFREE"], "true");
    EXPECT_EQ(bindTo(second), 0);
}

TEST_F(SimulatorInitiator, NamesMustBeInitiatorNames)
{
    for (const std::string id : {"", "host", "iqn.", "iqn.with blank", "0", "1"}) {
        EXPECT_EQ(client.post("/iscsi_initiator", R"({"ID":")" + id + R"("})").code(), code::MEMBER_INVALID)
            << id;
    }
    EXPECT_EQ(client.post("/iscsi_initiator", R"({"NAME":"n"})").code(), code::MEMBER_MISSING);
    const auto makeOf = [&](std::size_t size) {
        return client.post("/iscsi_initiator", R"({"ID":")" + ("iqn." + std::string(size - 4, 'x')) + R"("})")
            .code();
    };
    EXPECT_EQ(makeOf(5), 0);
    EXPECT_EQ(makeOf(223), 0);
    EXPECT_EQ(makeOf(224), code::MEMBER_INVALID);
    EXPECT_EQ(client.post("/iscsi_initiator", R"({"ID":"iqn.a+b"})").code(), 0);
    EXPECT_EQ(client.get("/iscsi_initiator/iqn.a+b").data()["ID"], "iqn.a+b") << "a blank in a query alone";
    EXPECT_EQ(client.post("/iscsi_initiator", R"({"ID":"iqn.a/b%2F?x"})").code(), 0);
    EXPECT_EQ(client.get("/iscsi_initiator/iqn.a%2Fb%252F%3Fx").data()["ID"], "iqn.a/b%2F?x");
    EXPECT_EQ(client.post("/iscsi_initiator", R"({"ID":"iqn.a/b%2F?x"})").code(), code::ID_TAKEN);
}

TEST_F(SimulatorInitiator, FcInitiatorsAreNamedByTheirWwpnAndBoundLikeIscsiOnes)
{
    const std::string owner = host("h");
    for (const std::string id : {"21000024ff0000", "21000024ff00000g", "21000024ff00000011"}) {
        EXPECT_EQ(client.post("/fc_initiator", R"({"ID":")" + id + R"("})").code(), code::MEMBER_INVALID)
            << id;
    }
    const Reply made = client.post("/fc_initiator", R"({"ID":"21000024ff000001","PARENTID":")" + owner +
                                                        R"(","PARENTTYPE":21,"NAME":"fc"})");
    ASSERT_EQ(made.code(), 0) << made.text;
    EXPECT_EQ(made.data()["ISFREE"], "false");
    EXPECT_EQ(made.data()["PARENTNAME"], "h");
    EXPECT_EQ(client.put("/fc_initiator/remove_fc_from_host", R"({"ID":"21000024ff000001"})").code(), 0);
    EXPECT_EQ(client.get("/fc_initiator/21000024ff000001").data()["ISFREE"], "true");
    EXPECT_EQ(
        client.put("/fc_initiator/21000024ff000001", R"({"PARENTTYPE":21,"PARENTID":")" + owner + R"("})")
            .code(),
        0);
    EXPECT_EQ(client.put("/fc_initiator/21000024ff000001", R"({"USECHAP":"true"})").code(),
              code::MEMBER_UNKNOWN);
}

} // namespace
