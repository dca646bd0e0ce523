// Every object of the array through the exported handlers, against an array that keeps the rules.

#include "LoggedIn.h"
#include "support/OwnIpcNamespace.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::HasSubstr;

namespace {

class Objects : public LoggedIn
{
protected:
    HostMO newHost(const std::string& name)
    {
        HostMO wanted;
        wanted.NAME = name;
        wanted.OPERATIONSYSTEM = 0;
        wanted.IP = "192.0.2.1";
        wanted.LOCATION = "rack 4";
        return sdk.hosts().createHost(wanted);
    }

    HostGroupMO newHostGroup(const std::string& name)
    {
        HostGroupMO wanted;
        wanted.NAME = name;
        return sdk.hostGroups().createHostGroup(wanted);
    }

    MappingViewMO newView(const std::string& name)
    {
        MappingViewMO wanted;
        wanted.NAME = name;
        wanted.ENABLEINBANDCOMMAND = 1;
        return sdk.views().createMappingView(wanted);
    }
};

} // namespace

TEST_F(Objects, LunGroupCountsItsLunsAndSnapshotsAndIsDeletedOnlyWhenEmpty)
{
    const LunGroupMO group = newLunGroup("g");
    const LunMO lun = newLun("l");
    const std::string snapshot = sim.createSnapshot(lun.ID, "s");
    sdk.lunGroups().addLunToLunGroup(lun.ID, group.ID);
    sdk.lunGroups().addSnapshotToLunGroup(snapshot, group.ID);
    EXPECT_EQ(sdk.lunGroups().getObjNOFromLunGroup(group.ID), 2u);
    EXPECT_EQ(sdk.luns().getLun(lun.ID).ISADD2LUNGROUP, 1);
    EXPECT_THROW(sdk.lunGroups().deleteLunGroup(group.ID), OvraAPIExceptionWithErrCode);

    LunGroupQuery all;
    EXPECT_EQ(sdk.lunGroups().getLunGroupByLun(lun.ID, all).at(0).ID, group.ID);
    EXPECT_EQ(sdk.lunGroups().getLunGroupBySnapshot(snapshot, all).at(0).ID, group.ID);

    sdk.lunGroups().removeLunFromLunGroup(lun.ID, group.ID);
    sdk.lunGroups().removeSnapshotFromLunGroup(snapshot, group.ID);
    EXPECT_EQ(sdk.lunGroups().getObjNOFromLunGroup(group.ID), 0u);
    sdk.lunGroups().deleteLunGroup(group.ID);
    EXPECT_THROW(sdk.lunGroups().getLunGroup(group.ID), OvraAPIExceptionWithErrCode);
}

TEST_F(Objects, AddingAndRemovingAMemberTwiceIsToldAndHarmless)
{
    const LunGroupMO group = newLunGroup("g");
    const LunMO lun = newLun("l");
    sdk.lunGroups().addLunToLunGroup(lun.ID, group.ID);
    const LogMark mark;
    sdk.lunGroups().addLunToLunGroup(lun.ID, group.ID);
    EXPECT_THAT(mark.run(),
                Contains("WARN the lun was already in the lun group, ignore it. addLunToLunGroup"));
    sdk.lunGroups().removeLunFromLunGroup(lun.ID, group.ID);
    sdk.lunGroups().removeLunFromLunGroup(lun.ID, group.ID);
    EXPECT_THAT(mark.run(),
                Contains("WARN the lun was not in the lun group, ignore it. removeLunFromLunGroup"));
    EXPECT_EQ(sdk.lunGroups().getObjNOFromLunGroup(group.ID), 0u);
}

TEST_F(Objects, SnapshotIsReadAndListedWithTheWwnOfItsOwn)
{
    const LunMO lun = newLun("l");
    const std::string id = sim.createSnapshot(lun.ID, "s");
    const SnapshotMO snapshot = sdk.snapshots().getSnapshot(id);
    EXPECT_EQ(snapshot.NAME, "s");
    EXPECT_EQ(snapshot.PARENTID, lun.ID);
    EXPECT_EQ(snapshot.PARENTTYPE, 11);
    EXPECT_EQ(snapshot.WWN.size(), 32u);
    EXPECT_NE(snapshot.WWN, lun.WWN);

    const LunGroupMO group = newLunGroup("g");
    sdk.lunGroups().addSnapshotToLunGroup(id, group.ID);
    SnapshotQuery all;
    ASSERT_EQ(sdk.snapshots().getSnapshotByLunGroup(group.ID, all).size(), 1u);
}

TEST_F(Objects, HostIsCreatedAndReadWithItsFieldsAndMembership)
{
    const HostMO host = newHost("h");
    EXPECT_EQ(host.NAME, "h");
    EXPECT_EQ(host.LOCATION, "rack 4");
    EXPECT_EQ(host.IP, "192.0.2.1");
    EXPECT_EQ(host.OPERATIONSYSTEM, 0u);
    EXPECT_EQ(host.ISADD2HOSTGROUP, 0);

    const HostGroupMO group = newHostGroup("hg");
    sdk.hostGroups().addHostToHostGroup(host.ID, group.ID);
    EXPECT_EQ(sdk.hosts().getHost(host.ID).ISADD2HOSTGROUP, 1);
    HostGroupQuery all;
    EXPECT_EQ(sdk.hostGroups().getHostGroupByHost(host.ID, all).at(0).NAME, "hg");
    const LogMark mark;
    sdk.hostGroups().addHostToHostGroup(host.ID, group.ID);
    EXPECT_THAT(mark.run(),
                Contains("WARN the host was already in the host group, ignore it. addHostToHostGroup"));

    sdk.hostGroups().removeHostFromHostGroup(host.ID, group.ID);
    EXPECT_EQ(sdk.hosts().getHost(host.ID).ISADD2HOSTGROUP, 0);
    sdk.hostGroups().deleteHostGroup(group.ID);
}

TEST_F(Objects, HostWithoutAnOperatingSystemIsCreatedAllTheSame)
{
    HostMO wanted;
    wanted.NAME = "any";
    const LogMark mark;
    EXPECT_EQ(sdk.hosts().createHost(wanted).OPERATIONSYSTEM, 100u);
    EXPECT_THAT(mark.records(), testing::ElementsAre("createHost 1", "getHost 0", "createHost 0"));
}

TEST_F(Objects, IscsiInitiatorIsBoundToOneHostAndFreedAgain)
{
    IscsiInitiatorMO wanted;
    wanted.ID = "iqn.2026-01.example:one";
    wanted.NAME = "one";
    EXPECT_TRUE(sdk.initiators().createIscsiInitiator(wanted).ISFREE);
    const HostMO host = newHost("h");
    sdk.initiators().addIscsiInitiatorToHost(wanted.ID, host.ID);
    const IscsiInitiatorMO bound = sdk.initiators().getIscsiInitiator(wanted.ID);
    EXPECT_FALSE(bound.ISFREE);
    EXPECT_EQ(bound.PARENTID, host.ID);
    EXPECT_EQ(bound.PARENTNAME, "h");
    EXPECT_THROW(sdk.initiators().addIscsiInitiatorToHost(wanted.ID, newHost("h2").ID),
                 OvraAPIExceptionWithErrCode);
    sdk.initiators().removeIscsiInitiatorFromHost(wanted.ID);
    EXPECT_TRUE(sdk.initiators().getIscsiInitiator(wanted.ID).ISFREE);
    sdk.initiators().deleteIscsiInitiator(wanted.ID);
    EXPECT_THROW(sdk.initiators().getIscsiInitiator(wanted.ID), OvraAPIExceptionWithErrCode);
}

TEST_F(Objects, IscsiInitiatorTakesChapAndChangesItsSecretWithTheOldOneOnly)
{
    IscsiInitiatorMO initiator;
    initiator.ID = "iqn.2026-01.example:chap";
    initiator.USECHAP = true;
    initiator.NORMALVERMODE = "1";
    initiator.CHAPNAME = "user-of-chap";
    initiator.CHAPPASSWORD = "Secret-of-chap-1";
    const IscsiInitiatorMO made = sdk.initiators().createIscsiInitiator(initiator);
    EXPECT_TRUE(made.USECHAP);
    EXPECT_EQ(made.NORMALVERMODE, "1");
    EXPECT_EQ(made.CHAPNAME, "user-of-chap");
    EXPECT_EQ(made.CHAPPASSWORD, "");

    initiator.CHAPPASSWORD = "Secret-of-chap-2";
    initiator.CHAPOLDPASSWORD = "wrong";
    EXPECT_THROW(sdk.initiators().modifyIscsiInitiator(initiator), OvraAPIExceptionWithErrCode);
    initiator.CHAPOLDPASSWORD = "Secret-of-chap-1";
    sdk.initiators().modifyIscsiInitiator(initiator);

    initiator.USECHAP = false;
    sdk.initiators().modifyIscsiInitiator(initiator);
    EXPECT_FALSE(sdk.initiators().getIscsiInitiator(initiator.ID).USECHAP);
}

TEST_F(Objects, FcInitiatorIsCreatedBoundReadFreedAndDeleted)
{
    const HostMO host = newHost("h");
    FCInitiatorMO wanted;
    wanted.ID = "21000024ff000001";
    wanted.PARENTID = host.ID;
    const FCInitiatorMO made = sdk.fcInitiators().createFCInitiator(wanted);
    EXPECT_EQ(made.PARENTID, host.ID);
    EXPECT_FALSE(made.ISFREE);
    sdk.fcInitiators().removeFCInitiatorFromHost(wanted.ID);
    EXPECT_TRUE(sdk.fcInitiators().getFCInitiator(wanted.ID).ISFREE);
    sdk.fcInitiators().addFCInitiatorToHost(wanted.ID, host.ID);
    EXPECT_FALSE(sdk.fcInitiators().getFCInitiator(wanted.ID).ISFREE);
    sdk.fcInitiators().removeFCInitiatorFromHost(wanted.ID);
    sdk.fcInitiators().deleteFCInitiator(wanted.ID);
    EXPECT_THROW(sdk.fcInitiators().getFCInitiator(wanted.ID), OvraAPIExceptionWithErrCode);
}

TEST_F(Objects, MappingViewBindsAndFreesItsGroups)
{
    const MappingViewMO view = newView("v");
    EXPECT_EQ(view.ENABLEINBANDCOMMAND, 1);
    const LunGroupMO lunGroup = newLunGroup("g");
    const HostGroupMO hostGroup = newHostGroup("hg");
    EXPECT_EQ(sdk.lunGroups().getLunGroupByMappingView(view.ID).ID, "");
    sdk.views().addLunGroupToMappingView(lunGroup.ID, view.ID);
    sdk.views().addHostGroupToMappingView(hostGroup.ID, view.ID);
    EXPECT_EQ(sdk.lunGroups().getLunGroupByMappingView(view.ID).ID, lunGroup.ID);
    EXPECT_EQ(sdk.hostGroups().getHostGroupByMappingView(view.ID).ID, hostGroup.ID);
    EXPECT_EQ(sdk.lunGroups().getLunGroup(lunGroup.ID).ISADD2MAPPINGVIEW, 1);
    MappingViewQuery all;
    EXPECT_EQ(sdk.views().getMappingViewByLunGroup(lunGroup.ID, all).at(0).ID, view.ID);
    EXPECT_EQ(sdk.views().getMappingViewByHostGroup(hostGroup.ID, all).at(0).ID, view.ID);
    sdk.views().removeLunGroupFromMappingView(lunGroup.ID, view.ID);
    sdk.views().removeHostGroupFromMappingView(hostGroup.ID, view.ID);
    sdk.views().deleteMappingView(view.ID);
    EXPECT_THROW(sdk.views().getMappingView(view.ID), OvraAPIExceptionWithErrCode);
}

TEST_F(Objects, AHostSeesALunOnlyWhileEveryLinkStands)
{
    const LunMO lun = newLun("l");
    const LunGroupMO lunGroup = newLunGroup("g");
    const HostMO host = newHost("h");
    const HostGroupMO hostGroup = newHostGroup("hg");
    const MappingViewMO view = newView("v");
    LunQuery all;
    const auto seen = [&] { return sdk.luns().getLunByHost(host.ID, all).size(); };

    sdk.lunGroups().addLunToLunGroup(lun.ID, lunGroup.ID);
    sdk.views().addLunGroupToMappingView(lunGroup.ID, view.ID);
    sdk.views().addHostGroupToMappingView(hostGroup.ID, view.ID);
    EXPECT_EQ(seen(), 0u);
    sdk.hostGroups().addHostToHostGroup(host.ID, hostGroup.ID);
    EXPECT_EQ(seen(), 1u);
    sdk.views().removeLunGroupFromMappingView(lunGroup.ID, view.ID);
    EXPECT_EQ(seen(), 0u);
}

TEST_F(Objects, PortsOfEveryKindAreListedAndReadWithTheirCounters)
{
    FCPortQuery fc;
    const auto fcPorts = sdk.handler<CFCPortHandler>(FCPORT_HANDLER).getFCPortBatch(fc);
    ASSERT_FALSE(fcPorts.empty());
    EXPECT_FALSE(fcPorts[0].WWN.empty());
    EXPECT_NE(fcPorts[0].LOSTSIGNALS, UINT64_MAX);

    FCoEPortQuery fcoe;
    const auto fcoePorts = sdk.handler<CFCoEPortHandler>(FCOEPORT_HANDLER).getFCoEPortBatch(fcoe);
    ASSERT_FALSE(fcoePorts.empty());
    EXPECT_FALSE(fcoePorts[0].VLANID.empty());

    ETHPortQuery eth;
    auto& ethHandler = sdk.handler<CETHPortHandler>(ETHPORT_HANDLER);
    const auto ethPorts = ethHandler.getETHPortBatch(eth);
    ASSERT_FALSE(ethPorts.empty());
    EXPECT_NE(ethPorts[0].MTU, UINT64_MAX);
    EXPECT_EQ(ethHandler.getETHPort(ethPorts[0].ID).MACADDRESS, ethPorts[0].MACADDRESS);

    ETHPortMO filter;
    filter.ID = ethPorts[0].ID;
    ETHPortQuery one(filter, 0, 5);
    EXPECT_EQ(ethHandler.getETHPortBatch(one).size(), 1u);
}

TEST_F(Objects, EveryHandlerTypeOfTheInterfaceIsHandedOut)
{
    if (!enterOwnIpcNamespace()) {
        GTEST_SKIP() << "needs the right to make an IPC namespace";
    }
    for (int type = LUN_HANDLER; type <= FCOEPORT_HANDLER; ++type) {
        EXPECT_NE(sdk.array().getHandler(static_cast<HANDLERTYPE>(type)), nullptr) << type;
    }
}
