// Session and LUNs, from the exported headers to an array over HTTPS and back.

#include "LoggedIn.h"

#include <gmock/gmock.h>
#include <ovra/rest/RestRequest.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Spine : public LoggedIn
{
};

class SettlingArray : public LoggedIn
{
protected:
    SettlingArray() : LoggedIn({{"--settle", "3"}}, 3) {}
};

} // namespace

TEST_F(Spine, RefusesAWrongPasswordWithTheArraysDescription)
{
    Sdk other;
    const LogMark mark;
    EXPECT_FALSE(other.array().loginDevice(sim.ip(), sim.port(), sim.user(), "wrong", USERTYPE_LOCAL));
    EXPECT_THAT(mark.run(), Contains(StartsWith("ERROR Login device fail,err msg:")));
    EXPECT_THAT(mark.records(), ElementsAre(StartsWith("loginDevice ")));
}

TEST_F(Spine, CreatesAThinLunAndReadsItBackAsTheArrayHoldsIt)
{
    LunMO wanted;
    wanted.NAME = "thin";
    wanted.PARENTID = "0";
    wanted.CAPACITY = 10UL * 1024 * 1024;
    wanted.ALLOCTYPE = 1;
    wanted.ALLOCCAPACITY = 0;
    wanted.DESCRIPTION = "\"quoted\" & ünïcode";
    const LunMO lun = sdk.luns().createLun(wanted);
    EXPECT_EQ(lun.NAME, "thin");
    EXPECT_EQ(lun.CAPACITY, 10UL * 1024 * 1024);
    EXPECT_EQ(lun.ALLOCTYPE, 1u);
    EXPECT_EQ(lun.PARENTTYPE, 216u);
    EXPECT_EQ(lun.DESCRIPTION, wanted.DESCRIPTION);
    EXPECT_EQ(lun.ISADD2LUNGROUP, 0);
    ASSERT_EQ(lun.WWN.size(), 32u);
    EXPECT_EQ(lun.WWN[0], '6');
    EXPECT_EQ(std::stoul(lun.WWN.substr(24), nullptr, 16), std::stoul(lun.ID));
}

TEST_F(Spine, ListsTheLunsOfAGroupInTheArraysOrder)
{
    const LunGroupMO group = newLunGroup("g");
    std::vector<std::string> ids;
    for (const char* const name : {"a", "b", "c"}) {
        ids.push_back(newLun(name).ID);
        sdk.lunGroups().addLunToLunGroup(ids.back(), group.ID);
    }
    LunQuery everything;
    std::vector<std::string> listed;
    for (const LunMO& lun : sdk.luns().getLunByLunGroup(group.ID, everything)) {
        listed.push_back(lun.ID);
    }
    EXPECT_EQ(listed, ids);

    LunMO filter;
    filter.NAME = "b";
    LunQuery onlyB(filter, 0, 10);
    ASSERT_EQ(sdk.luns().getLunByLunGroup(group.ID, onlyB).size(), 1u);
    LunMO none;
    LunQuery secondPage(none, 1, 1);
    ASSERT_EQ(sdk.luns().getLunByLunGroup(group.ID, secondPage).at(0).ID, ids[1]);
}

TEST_F(Spine, FindsALunWhoseNameHoldsWhatEndsAConditionAndAddsNone)
{
    const LunGroupMO group = newLunGroup("g");
    const std::string name = "a&b=c#d+e?f/g%h";
    sdk.lunGroups().addLunToLunGroup(newLun(name).ID, group.ID);
    sdk.lunGroups().addLunToLunGroup(newLun("other").ID, group.ID);
    LunMO filter;
    filter.NAME = name;
    LunQuery query(filter, 0, 0);
    const std::vector<LunMO> found = sdk.luns().getLunByLunGroup(group.ID, query);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].NAME, name);
}

TEST_F(Spine, TellsTheArraysErrorOfAnUnknownLunAndGoesOn)
{
    const LogMark mark;
    try {
        sdk.luns().getLun("4711");
        FAIL() << "no exception";
    } catch (const OvraAPIExceptionWithErrCode& e) {
        EXPECT_NE(e.getErrCode(), 0);
        EXPECT_THAT(e.what(), HasSubstr("get error response, error code:" + std::to_string(e.getErrCode())));
        EXPECT_THAT(mark.records(), ElementsAre("getLun " + std::to_string(e.getErrCode())));
    }
    EXPECT_FALSE(newLun("next").ID.empty());
}

TEST_F(SettlingArray, IsReadAgainUntilTheNewLunIsReadable)
{
    EXPECT_FALSE(newLun("late").ID.empty());
    EXPECT_EQ(sim.requests("GET", "/lun/{id}"), 4u);
}

TEST_F(SettlingArray, LeavesAnEmptyRecordWhenTheNewLunStaysUnreadable)
{
    sim.settle(4);
    EXPECT_TRUE(newLun("later").ID.empty());
    EXPECT_EQ(sim.requests("GET", "/lun/{id}"), 4u);
}

TEST_F(Spine, NeedsANewLoginAfterTheArrayDroppedTheSession)
{
    sim.dropSessions();
    EXPECT_THROW(sdk.luns().getLun("1"), OvraAPIExceptionWithErrCode);
    EXPECT_FALSE(sdk.array().keepAlive());
    ASSERT_TRUE(login(sdk));
    EXPECT_TRUE(sdk.array().keepAlive());
    EXPECT_FALSE(newLun("after").ID.empty());
}

TEST_F(Spine, KeepsASessionAliveBeyondItsIdleTimeOut)
{
    for (int i = 0; i < 3; ++i) {
        sim.advanceSessions(1000);
        EXPECT_TRUE(sdk.array().keepAlive());
    }
    sim.advanceSessions(1300);
    EXPECT_FALSE(sdk.array().keepAlive());
}

TEST_F(Spine, FailsEveryCallAfterLogoutWithoutAskingTheArray)
{
    ASSERT_TRUE(sdk.array().logoutDevice());
    sim.resetCounters();
    EXPECT_EQ(thrownBy([&] { sdk.luns().getLun("1"); }), "Exception:url error or internet error getLun");
    EXPECT_TRUE(sim.counters()["requests"].empty());
}

TEST_F(Spine, WorksOnASessionThatWasOpenedElsewhere)
{
    const std::string id = newLun("shared").ID;
    RestRequest request;
    request.SetServerUrl(sim.url());
    request.BodyAddProperty("username", sim.user());
    request.BodyAddProperty("password", sim.password());
    request.BodyAddProperty("scope", 0);
    RestResponse response;
    std::vector<std::string> headers;
    ASSERT_EQ(request.SendRequest("/deviceManager/rest/xxxx/sessions", REST_POST, response, headers, true),
              0);
    std::string cookie;
    for (const std::string& line : headers) {
        if (line.compare(0, 11, "Set-Cookie:") == 0) {
            cookie = line.substr(12, line.find(';') - 12);
        }
    }

    Sdk other;
    const std::string token = response[0]["iBaseToken"].asString();
    ASSERT_TRUE(other.array().useConnection(sim.ip(), sim.port(), sim.deviceId(), token, cookie));
    EXPECT_EQ(other.luns().getLun(id).NAME, "shared");
    EXPECT_TRUE(other.array().logoutDevice());
    EXPECT_EQ(sdk.luns().getLun(id).NAME, "shared");
}

TEST_F(Spine, KeepsTwoArraysApartInOneProcess)
{
    tessel_test::ArraySim second;
    // Trust is the process's: both authorities in one file.
    const std::string both = sim.stateDir() + "/both.pem";
    ASSERT_EQ(system(("cat " + sim.caFile() + " " + second.caFile() + " > " + both).c_str()), 0);
    trust(both);
    Sdk other;
    ASSERT_TRUE(other.array().loginDevice(second.ip(), second.port(), second.user(), second.password(),
                                          USERTYPE_LOCAL));
    const std::string id = newLun("only on the first").ID;
    EXPECT_EQ(sdk.luns().getLun(id).NAME, "only on the first");
    EXPECT_THROW(other.luns().getLun(id), OvraAPIExceptionWithErrCode);
}

TEST_F(Spine, MakesOneTlsHandshakeForLoginAHundredReadsAndLogout)
{
    const std::string id = newLun("read often").ID;
    for (int i = 0; i < 100; ++i) {
        sdk.luns().getLun(id);
    }
    EXPECT_TRUE(sdk.array().logoutDevice());
    EXPECT_EQ(sim.counters()["handshakes"].asUInt(), 1u);
}
