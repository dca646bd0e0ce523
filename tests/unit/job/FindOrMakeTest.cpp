#include "job/FindOrMake.h"

#include <tessel/HostGroup.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace ovra::tessel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int BUSY = 1077949006;
constexpr int REFUSED = 17; ///< any code that no two arrays share

HostGroupMO group(const std::string& id, const std::string& name = "")
{
    HostGroupMO record;
    record.ID = id;
    record.NAME = name;
    return record;
}

/** An array of one place for an object; every step is written down, and may be told to go wrong. */
class Make : public testing::Test
{
protected:
    Make()
    {
        options.tries = 3;
        options.pauseMilliseconds = 1;
    }

    HostGroupMO make()
    {
        const Making<HostGroupMO> making{
            MO_HOSTGROUP,
            AccessNames::ofHost("7"),
            [this](unsigned) {
                steps.emplace_back("find");
                return onFind ? onFind() : bound;
            },
            [this](const std::string& name) {
                steps.push_back("create " + name);
                return onCreate(name);
            },
            [this](const HostGroupMO& record) {
                steps.push_back("bind " + record.ID);
                onBind(record);
            },
            [this](const HostGroupMO& record) { steps.push_back("drop " + record.ID); }};
        return Maker<HostGroupMO>(making, options, made).make();
    }

    AccessOptions options;
    std::vector<NamedObject> made;
    std::vector<std::string> steps;
    HostGroupMO bound;
    std::function<HostGroupMO()> onFind;
    std::function<HostGroupMO(const std::string&)> onCreate = [](const std::string& name) {
        return group("1", name);
    };
    std::function<void(const HostGroupMO&)> onBind = [this](const HostGroupMO& record) { bound = record; };
};

TEST_F(Make, CreatesBindsAndReadsBack)
{
    EXPECT_EQ(make().ID, "1");
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "bind 1", "find"));
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].NAME, "tessel_host_7");
}

TEST_F(Make, WaitsForWhoeverTookTheName)
{
    onCreate = [](const std::string&) -> HostGroupMO { throw OvraAPIExceptionWithErrCode(REFUSED, "taken"); };
    onFind = [this] { return steps.size() < 4 ? HostGroupMO() : group("9"); };
    EXPECT_EQ(make().ID, "9");
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "find", "create tessel_host_7", "find"));
    EXPECT_THAT(made, IsEmpty());
}

TEST_F(Make, GoesOnToASuffixWhenNobodyShowsUp)
{
    onCreate = [](const std::string& name) -> HostGroupMO {
        if (name == "tessel_host_7") {
            throw OvraAPIExceptionWithErrCode(REFUSED, "taken");
        }
        return group("2", name);
    };
    EXPECT_EQ(make().NAME, "tessel_host_7_2");
}

TEST_F(Make, TakesNoSuffixBecauseTheArrayIsBusy)
{
    onCreate = [](const std::string&) -> HostGroupMO { throw OvraAPIExceptionWithErrCode(BUSY, "later"); };
    EXPECT_THROW(make(), OvraAPIExceptionWithErrCode);
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "find", "create tessel_host_7", "find",
                                   "create tessel_host_7", "find"));
}

TEST_F(Make, ReadsBackBeforeItCreatesAgainWhatWasCutOff)
{
    onCreate = [this](const std::string& name) {
        if (steps.size() == 1) {
            throw OvraAPIException("url error or internet error");
        }
        return group("1", name);
    };
    EXPECT_EQ(make().ID, "1");
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "find", "create tessel_host_7", "bind 1", "find"));
}

TEST_F(Make, BindsOnceWhereTheAnswerWasCutOffOnly)
{
    onBind = [this](const HostGroupMO& record) {
        bound = record;
        throw OvraAPIException("url error or internet error");
    };
    EXPECT_EQ(make().ID, "1");
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "bind 1", "find"));
}

TEST_F(Make, BindsAgainWhereReadingBackShowsNothing)
{
    onBind = [this](const HostGroupMO& record) { bound = steps.size() > 2 ? record : HostGroupMO(); };
    EXPECT_EQ(make().ID, "1");
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "bind 1", "find", "bind 1", "find"));
}

TEST_F(Make, TakesItsOwnAwayWhenAnotherWasFaster)
{
    onBind = [](const HostGroupMO&) { throw OvraAPIExceptionWithErrCode(REFUSED, "full"); };
    onFind = [] { return group("9"); };
    EXPECT_EQ(make().ID, "9");
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "bind 1", "find", "drop 1"));
    EXPECT_THAT(made, IsEmpty());
}

TEST_F(Make, TakesItsOwnAwayWhenItCannotBeBound)
{
    onBind = [](const HostGroupMO&) { throw OvraAPIExceptionWithErrCode(REFUSED, "no"); };
    EXPECT_THROW(make(), OvraAPIExceptionWithErrCode);
    EXPECT_EQ(steps.back(), "drop 1");
}

TEST_F(Make, MakesNoSecondOneOfWhatItCannotReadBack)
{
    onCreate = [](const std::string&) { return HostGroupMO(); };
    EXPECT_THROW(make(), OvraAPIException);
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7"));
}

TEST_F(Make, TellsTheArraysReasonWhenNoNameIsTaken)
{
    options.tries = 1;
    onCreate = [](const std::string&) -> HostGroupMO { throw OvraAPIExceptionWithErrCode(REFUSED, "full"); };
    try {
        make();
        FAIL();
    } catch (const OvraAPIExceptionWithErrCode& e) {
        EXPECT_EQ(e.getErrCode(), REFUSED);
    }
    EXPECT_EQ(steps.size(), 2 * AccessNames::MOST);
}

TEST_F(Make, PassesOnThatReadingBackIsImpossible)
{
    onCreate = [](const std::string&) -> HostGroupMO { throw OvraAPIException("cut off"); };
    onFind = []() -> HostGroupMO { throw OvraAPIException("cut off, too"); };
    EXPECT_THROW(make(), OvraAPIException);
    EXPECT_THAT(steps, ElementsAre("create tessel_host_7", "find"));
}

TEST(AccessNames, AreSafeShortAndTheSameAtAnyTime)
{
    EXPECT_EQ(AccessNames::ofHost("7").at(0), "tessel_host_7");
    EXPECT_EQ(AccessNames::ofHost("7").at(1), "tessel_host_7_2");
    EXPECT_EQ(AccessNames::ofInitiator("iqn.2026-01.example:a").at(0), "tessel_46293db7b332b516");
    const std::string strange = "0 & filter=NAME:x/../" + std::string(300, 'y');
    for (const AccessNames& names : {AccessNames::ofHost("123456789012345"), AccessNames::ofHost(strange),
                                     AccessNames::ofHost(""), AccessNames::ofInitiator(strange)}) {
        for (unsigned i = 0; i < AccessNames::MOST; ++i) {
            EXPECT_LE(names.at(i).size(), 31u);
            EXPECT_EQ(names.at(i).find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_"),
                      std::string::npos);
            EXPECT_EQ(names.indexOf(names.at(i)), i);
        }
    }
}

TEST(AccessNames, AreDifferentForDifferentHosts)
{
    EXPECT_NE(AccessNames::ofHost("7").at(1), AccessNames::ofHost("7_2").at(0));
    EXPECT_FALSE(AccessNames::ofHost("7").has("tessel_host_72"));
    EXPECT_FALSE(AccessNames::ofHost("7").has("tessel_host_7_"));
    EXPECT_FALSE(AccessNames::ofHost("7").has("tessel_host_7_02"));
    EXPECT_FALSE(AccessNames::ofHost("7").has(""));
    EXPECT_NE(AccessNames::ofHost("1 ").at(0), AccessNames::ofHost(" 1").at(0));
}

} // namespace
