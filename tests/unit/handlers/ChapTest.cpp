// What creating and modifying an iSCSI initiator send of its CHAP settings.

#include "unit/handlers/HandlerTest.h"

namespace {

using namespace handlers;
using journal::join;
using testing::ElementsAre;
using testing::ElementsAreArray;

class Chap : public HandlerTest
{
protected:
    static IscsiInitiatorMO initiator(const char* normal, const char* discovery)
    {
        IscsiInitiatorMO mo;
        mo.ID = "iqn";
        mo.USECHAP = true;
        mo.NORMALVERMODE = normal;
        mo.DISCOVERYVERMODE = discovery;
        mo.CHAPNAME = "cn";
        mo.CHAPPASSWORD = "cp";
        mo.CHAPOLDPASSWORD = "co";
        mo.CHAPNAMEINITATORVERTARGET = "tn";
        mo.CHAPPASSWORDINITATORVERTARGET = "tp";
        mo.CHAPOLDPASSWORDINITATORVERTARGET = "to";
        return mo;
    }

    std::string created(IscsiInitiatorMO mo)
    {
        platform.reset();
        platform.reply(Reply::object(R"({"ID":"9"})"));
        iscsi(manager).createIscsiInitiator(mo);
        return platform.requests().front().text();
    }

    std::string modified(IscsiInitiatorMO mo, const std::string& current = R"({"ID":"iqn"})")
    {
        platform.reset();
        platform.reply(Reply::object(current));
        iscsi(manager).modifyIscsiInitiator(mo);
        return platform.requests().back().text();
    }

    const std::string post = "POST /iscsi_initiator ID=string:iqn";
    const std::string put = "PUT /iscsi_initiator ID=string:iqn";
    const std::string oneWay = " CHAPNAME=string:cn CHAPPASSWORD=string:cp";
    const std::string target = " CHAPNAMEINITATORVERTARGET=string:tn CHAPPASSWORDINITATORVERTARGET=string:tp";

    static std::string on(const std::string& normal, const std::string& discovery)
    {
        return " USECHAP=string:true NORMALVERMODE=string:" + normal +
               " DISCOVERYVERMODE=string:" + discovery;
    }
};

TEST_F(Chap, OnCreateIsSentWithItsModesAndForMutualChapWithTheTargetsNames)
{
    EXPECT_EQ(created(initiator("1", "0")), post + on("1", "0") + oneWay);
    EXPECT_EQ(created(initiator("0", "1")), post + on("0", "1") + oneWay);
    EXPECT_EQ(created(initiator("2", "0")), post + on("2", "0") + oneWay + target);
    EXPECT_EQ(created(initiator("0", "2")), post + on("0", "2") + oneWay + target);
    EXPECT_EQ(created(initiator("2", "2")), post + on("2", "2") + oneWay + target);
    EXPECT_EQ(created(initiator("", "0")), post + on("", "0") + oneWay);
}

TEST_F(Chap, AskedForWithBothModes0IsTurnedOffAndNoNamesAreSent)
{
    EXPECT_EQ(created(initiator("0", "0")), post + " USECHAP=string:false");
    EXPECT_EQ(modified(initiator("0", "0")), put + " USECHAP=string:false");
}

TEST_F(Chap, NotAskedForSendsNothingElseOfIt)
{
    IscsiInitiatorMO mo = initiator("2", "2");
    mo.USECHAP = false;
    EXPECT_EQ(created(mo), post + " USECHAP=string:false");
    EXPECT_EQ(modified(mo, R"({"ID":"iqn","USECHAP":"true","NORMALVERMODE":"2"})"),
              put + " USECHAP=string:false");
}

TEST_F(Chap, OnCreateStandsBetweenTheParentAndTheName)
{
    IscsiInitiatorMO mo = initiator("1", "0");
    mo.NAME = "n";
    mo.PARENTID = "3";
    mo.PARENTTYPE = 14;
    EXPECT_EQ(created(mo),
              post + " PARENTID=string:3 PARENTTYPE=int:14" + on("1", "0") + oneWay + " NAME=string:n");
}

TEST_F(Chap, AParentTypeWithoutParentIsSentFromTheRecord)
{
    IscsiInitiatorMO mo;
    mo.ID = "iqn";
    mo.PARENTTYPE = 21;
    EXPECT_EQ(created(mo), post + " PARENTTYPE=int:21 USECHAP=string:false");
}

TEST_F(Chap, OnCreateWithoutNamesAndSecretsIsSentAllTheSameWithAWarningRecordForEach)
{
    IscsiInitiatorMO mo;
    mo.ID = "iqn";
    mo.USECHAP = true;
    mo.NORMALVERMODE = "2";
    EXPECT_EQ(created(mo), post + on("2", "0") +
                               " CHAPNAME=string: CHAPPASSWORD=string: CHAPNAMEINITATORVERTARGET=string:"
                               " CHAPPASSWORDINITATORVERTARGET=string:");
    const auto warned = [](const std::string& text) {
        return Lines{"error: " + text + "createIscsiInitiator", "record! createIscsiInitiator 1"};
    };
    const std::string enter = journal::enter("createIscsiInitiator");
    EXPECT_THAT(
        platform.journal(),
        ElementsAreArray(join(enter, warned("ChapName is empty! "), warned("ChapPassword is empty! "),
                              warned("ChapNameTarget is empty! "), warned("ChapPasswordTarget is empty! "),
                              platform.requests().front().text(),
                              journal::done("getIscsiInitiator", "GET /iscsi_initiator/9"),
                              "record createIscsiInitiator 0", enter)));
}

TEST_F(Chap, OnCreateWithOnlyTheNameMissingWarnsOfItAlone)
{
    IscsiInitiatorMO mo = initiator("2", "0");
    mo.CHAPNAME.clear();
    EXPECT_EQ(created(mo), post + on("2", "0") + " CHAPNAME=string: CHAPPASSWORD=string:cp" + target);
    EXPECT_THAT(platform.lines("error"), ElementsAre("error: ChapName is empty! createIscsiInitiator"));
    EXPECT_THAT(platform.lines("record! "), ElementsAre("record! createIscsiInitiator 1"));
}

TEST_F(Chap, WithoutMutualModeWarnsOfNoTargetNames)
{
    IscsiInitiatorMO mo = initiator("1", "1");
    mo.CHAPNAMEINITATORVERTARGET.clear();
    mo.CHAPPASSWORDINITATORVERTARGET.clear();
    created(mo);
    EXPECT_TRUE(platform.lines("error").empty());
}

TEST_F(Chap, OnModifySendsTheOldSecretOnlyWhenTheArrayReportsItInForce)
{
    EXPECT_EQ(modified(initiator("1", "0")), put + on("1", "0") + oneWay);
    EXPECT_EQ(modified(initiator("1", "0"), R"({"ID":"iqn","USECHAP":"true"})"),
              put + on("1", "0") + oneWay + " CHAPOLDPASSWORD=string:co");
}

TEST_F(Chap, OnModifySendsTheOldSecretOfTheTargetOnlyWhenMutualChapIsInForce)
{
    const std::string now = put + on("2", "0") + oneWay;
    const std::string old = " CHAPOLDPASSWORD=string:co";
    const std::string oldTarget = " CHAPOLDPASSWORDINITATORVERTARGET=string:to";
    EXPECT_EQ(modified(initiator("2", "0")), now + target);
    EXPECT_EQ(modified(initiator("2", "0"), R"({"ID":"iqn","NORMALVERMODE":"2"})"), now + target);
    EXPECT_EQ(modified(initiator("2", "0"), R"({"ID":"iqn","USECHAP":"true","NORMALVERMODE":"1"})"),
              now + old + target);
    EXPECT_EQ(modified(initiator("2", "0"), R"({"ID":"iqn","USECHAP":"true","NORMALVERMODE":"2"})"),
              now + old + target + oldTarget);
    EXPECT_EQ(modified(initiator("2", "0"), R"({"ID":"iqn","USECHAP":"true","DISCOVERYVERMODE":"2"})"),
              now + old + target + oldTarget);
}

TEST_F(Chap, OnModifyWithoutASecretSendsNeitherNameNorSecrets)
{
    const std::string inForce = R"({"ID":"iqn","USECHAP":"true","NORMALVERMODE":"2"})";
    IscsiInitiatorMO mo = initiator("2", "0");
    mo.CHAPPASSWORD.clear();
    EXPECT_EQ(modified(mo, inForce),
              put + on("2", "0") + target + " CHAPOLDPASSWORDINITATORVERTARGET=string:to");
    mo.CHAPPASSWORDINITATORVERTARGET.clear();
    EXPECT_EQ(modified(mo, inForce), put + on("2", "0"));
    EXPECT_TRUE(platform.lines("error").empty());
}

TEST_F(Chap, OnModifyFailuresOfTheFirstReadPassAndNothingIsChanged)
{
    IscsiInitiatorMO mo = initiator("1", "0");
    platform.reply(Reply::error(1077948995, "no such initiator"));
    EXPECT_EQ(outcomeOf([&] { iscsi(manager).modifyIscsiInitiator(mo); }).code, 1077948995);
    EXPECT_EQ(platform.requests().size(), 1u);
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! getIscsiInitiator 1077948995",
                                                      "record! modifyIscsiInitiator 1077948995"));
}

TEST_F(Chap, SecretsNeverReachALogLine)
{
    IscsiInitiatorMO mo = initiator("2", "2");
    mo.CHAPPASSWORD = mo.CHAPOLDPASSWORD = mo.CHAPPASSWORDINITATORVERTARGET = "open sesame";
    mo.CHAPOLDPASSWORDINITATORVERTARGET = "open sesame";
    mo.CHAPNAME.clear();
    for (const auto& sent : {created(mo), modified(mo, R"({"ID":"iqn","USECHAP":"true"})")}) {
        EXPECT_THAT(sent, testing::HasSubstr("open sesame"));
    }
    platform.reply(Reply::noAnswer());
    outcomeOf([&] { iscsi(manager).createIscsiInitiator(mo); });
    for (const std::string& line : platform.journal()) {
        if (line.compare(0, 4, "POST") != 0 && line.compare(0, 3, "PUT") != 0) {
            EXPECT_THAT(line, testing::Not(testing::HasSubstr("sesame")));
        }
    }
}

} // namespace
