// Operations that read objects in full do it through the virtual get, so that a subclass decides what they
// get.

#include "unit/handlers/HandlerTest.h"

namespace {

using testing::SizeIs;

class OwnLuns : public CLunHandlerImpl
{
public:
    using CLunHandlerImpl::CLunHandlerImpl;
    LunMO getLun(const std::string& lunID) override
    {
        LunMO mo;
        mo.ID = "own " + lunID;
        return mo;
    }
};

class OwnLunGroups : public CLunGroupHandlerImpl
{
public:
    using CLunGroupHandlerImpl::CLunGroupHandlerImpl;
    LunGroupMO getLunGroup(const std::string& lunGroupID) override
    {
        LunGroupMO mo;
        mo.ID = "own " + lunGroupID;
        return mo;
    }
};

class OwnSnapshots : public CSnapshotHandlerImpl
{
public:
    using CSnapshotHandlerImpl::CSnapshotHandlerImpl;
    SnapshotMO getSnapshot(const std::string& snapshotID) override
    {
        SnapshotMO mo;
        mo.ID = "own " + snapshotID;
        return mo;
    }
};

class OwnHosts : public CHostHandlerImpl
{
public:
    using CHostHandlerImpl::CHostHandlerImpl;
    HostMO getHost(const std::string& hostID) override
    {
        HostMO mo;
        mo.ID = "own " + hostID;
        return mo;
    }
};

class OwnInitiators : public CIscsiInitiatorHandlerImpl
{
public:
    using CIscsiInitiatorHandlerImpl::CIscsiInitiatorHandlerImpl;
    IscsiInitiatorMO getIscsiInitiator(const std::string& iscsiInitiatorID) override
    {
        IscsiInitiatorMO mo;
        mo.ID = "own " + iscsiInitiatorID;
        mo.USECHAP = true;
        return mo;
    }
};

class OwnPorts : public CFCPortHandlerImpl
{
public:
    using CFCPortHandlerImpl::CFCPortHandlerImpl;
    FCPortMO getFCPort(const std::string& fcPortID) override
    {
        FCPortMO mo;
        mo.ID = "own " + fcPortID;
        return mo;
    }
};

class VirtualReads : public HandlerTest
{
protected:
    void TearDown() override
    {
        EXPECT_THAT(platform.requests(), SizeIs(1)) << "the object was read from the array all the same";
        HandlerTest::TearDown();
    }
};

TEST_F(VirtualReads, OfANewLun)
{
    OwnLuns luns(&manager);
    platform.reply(Reply::object(R"({"ID":"9"})"));
    LunMO mo;
    mo.NAME = mo.PARENTID = "x";
    mo.CAPACITY = 512;
    EXPECT_EQ(luns.createLun(mo).ID, "own 9");
}

TEST_F(VirtualReads, OfANewHost)
{
    OwnHosts hosts(&manager);
    platform.reply(Reply::object(R"({"ID":"9"})"));
    HostMO mo;
    mo.NAME = "x";
    EXPECT_EQ(hosts.createHost(mo).ID, "own 9");
}

TEST_F(VirtualReads, OfListedLuns)
{
    OwnLuns luns(&manager);
    platform.reply(Reply::list(R"([{"ID":"1"}])"));
    LunQuery query;
    EXPECT_EQ(luns.getLunByHost("3", query).at(0).ID, "own 1");
}

TEST_F(VirtualReads, OfListedSnapshots)
{
    OwnSnapshots snapshots(&manager);
    platform.reply(Reply::list(R"([{"ID":"1"}])"));
    SnapshotQuery query;
    EXPECT_EQ(snapshots.getSnapshotByHost("3", query).at(0).ID, "own 1");
}

TEST_F(VirtualReads, OfTheLunGroupOfAView)
{
    OwnLunGroups lunGroups(&manager);
    platform.reply(Reply::list(R"([{"ID":"1"}])"));
    EXPECT_EQ(lunGroups.getLunGroupByMappingView("3").ID, "own 1");
}

TEST_F(VirtualReads, OfPortsInABatch)
{
    OwnPorts ports(&manager);
    platform.reply(Reply::list(R"([{"ID":"1"}])"));
    FCPortQuery query;
    EXPECT_EQ(ports.getFCPortBatch(query).at(0).ID, "own 1");
}

TEST_F(VirtualReads, OfTheCurrentStateOfAnInitiatorThatIsModified)
{
    OwnInitiators initiators(&manager);
    IscsiInitiatorMO mo;
    mo.ID = "iqn";
    mo.USECHAP = true;
    mo.NORMALVERMODE = "1";
    mo.CHAPPASSWORD = "new";
    mo.CHAPOLDPASSWORD = "old";
    initiators.modifyIscsiInitiator(mo);
    EXPECT_THAT(platform.requests().front().body,
                testing::Contains(testing::Pair("CHAPOLDPASSWORD", "string:old")));
}

} // namespace
