// The attach workflow against an array that keeps the rules: what stands on the array afterwards.

#include "AttachFixture.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;

TYPED_TEST_SUITE(AttachTo, AttachedKinds, AttachedKindName);

TYPED_TEST(AttachTo, AnInitiatorWithoutAHostMakesTheWholeChain)
{
    EXPECT_EQ(this->attach(), 0);
    EXPECT_EQ(this->seenByHost(), 1u);
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 1 host group, 1 view, 1 LUN group");
}

TYPED_TEST(AttachTo, AHostThatSeesTheObjectAlreadyCreatesNothing)
{
    this->attach();
    const LogMark mark;
    EXPECT_EQ(this->attach(), 1);
    EXPECT_THAT(mark.run(), Contains("ERROR The MappingView was already existed! " + this->attachName()));
    EXPECT_THAT(mark.records(), Contains(this->attachName() + " 1"));
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 1 host group, 1 view, 1 LUN group");
}

TYPED_TEST(AttachTo, AHostThatWasMadeEarlierIsUsedAgain)
{
    this->attach();
    const std::string first = this->object;
    this->object = this->newObject("second");
    nextSecond();
    EXPECT_EQ(this->attach(), 0);
    EXPECT_EQ(this->seenByHost(), 2u);
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 2 host groups, 2 views, 2 LUN groups");
}

TYPED_TEST(AttachTo, AnUnknownObjectOrInitiatorLeavesTheArrayAsItWas)
{
    this->object = "4711";
    EXPECT_THROW(this->attach(), OvraAPIExceptionWithErrCode);
    EXPECT_EQ(this->state(), "initiator free");
}

TYPED_TEST(AttachTo, AViewThatTakesNoHostGroupIsDeletedAndTheGroupsStay)
{
    this->sim.addErrorFault("PUT", "/mappingview/create_associate", 50331651);
    const LogMark mark;
    EXPECT_EQ(this->attach(), 0);
    EXPECT_THAT(mark.run(),
                Contains("ERROR MappingView add HostGroup or add LunGroup fail! " + this->attachName()));
    EXPECT_EQ(this->seenByHost(), 0u);
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 1 host group, 1 LUN group");
}

TYPED_TEST(AttachTo, DetachTakesTheLastObjectsGroupAwayAndKeepsTheRest)
{
    this->attach();
    EXPECT_EQ(this->detach(), 0);
    EXPECT_EQ(this->seenByHost(), 0u);
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 1 host group, 1 view");
}

TYPED_TEST(AttachTo, DetachKeepsAGroupThatHoldsAnotherObject)
{
    this->attach();
    this->sdk.lunGroups().addLunToLunGroup(this->newLun("neighbour").ID, "1");
    EXPECT_EQ(this->detach(), 0);
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 1 host group, 1 view, 1 LUN group");
}

TYPED_TEST(AttachTo, DetachOfAnInitiatorWithoutAHostOnlySaysSo)
{
    const LogMark mark;
    EXPECT_EQ(this->detach(), 0);
    EXPECT_THAT(mark.run(), Contains("ERROR Host was not existed! " + this->detachName()));
}

TYPED_TEST(AttachTo, DetachOfAnObjectThatTheHostDoesNotSeeOnlySaysSo)
{
    this->attach();
    this->object = this->newObject("never attached");
    const LogMark mark;
    EXPECT_EQ(this->detach(), 0);
    EXPECT_THAT(mark.run(), Contains("ERROR MappingView was not existed! " + this->detachName()));
    EXPECT_EQ(this->seenByHost(), 1u);
}

TYPED_TEST(AttachTo, DetachFromEveryHostStartsFromTheLunGroups)
{
    this->attach();
    EXPECT_EQ(this->detach("0"), 0);
    EXPECT_EQ(this->seenByHost(), 0u);
    EXPECT_EQ(this->state(), "initiator bound, 1 host, 1 host group, 1 view");

    const LogMark mark;
    EXPECT_EQ(this->detach("0"), 0);
    EXPECT_THAT(mark.run(), Contains("ERROR LunGroup do not exist! " + this->detachName()));
}

TYPED_TEST(AttachTo, AttachAfterDetachWorksAgain)
{
    this->attach();
    this->detach();
    nextSecond();
    EXPECT_EQ(this->attach(), 0);
    EXPECT_EQ(this->seenByHost(), 1u);
}
