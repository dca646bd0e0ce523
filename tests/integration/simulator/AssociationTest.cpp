#include "ArrayTest.h"
#include "Codes.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/** A LUN and a snapshot exposed to a host with an initiator: one object of each type. */
class SimulatorAssociation : public ArrayTest
{
protected:
    SimulatorAssociation()
        : lunId(lun("a")), snapshotId(array.createSnapshot(lunId, "s")), lunGroup(named("/lungroup/", "lg")),
          hostId(host("h")), hostGroup(named("/hostgroup", "hg")), view(named("/mappingview", "v"))
    {
        EXPECT_EQ(addLun().code(), 0);
        EXPECT_EQ(associate("POST", "/lungroup/associate", lunGroup, 27, snapshotId).code(), 0);
        EXPECT_EQ(addHost().code(), 0);
        EXPECT_EQ(bind(14, hostGroup).code(), 0);
        EXPECT_EQ(bind(256, lunGroup).code(), 0);
    }

    Reply addLun() { return associate("POST", "/lungroup/associate", lunGroup, 11, lunId); }
    Reply removeFromLunGroup(int type, const std::string& id)
    {
        return client.del("/lungroup/associate?ID=" + lunGroup + "&ASSOCIATEOBJTYPE=" + std::to_string(type) +
                          "&ASSOCIATEOBJID=" + id);
    }
    Reply addHost() { return associate("POST", "/hostgroup/associate", hostGroup, 21, hostId); }
    Reply removeHost()
    {
        return client.del("/host/associate?ID=" + hostGroup +
                          "&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + hostId);
    }
    Reply bind(int type, const std::string& id)
    {
        return associate("PUT", "/mappingview/create_associate", view, type, id);
    }
    Reply unbind(int type, const std::string& id)
    {
        return associate("PUT", "/mappingview/remove_associate", view, type, id);
    }
    std::vector<std::string> found(const std::string& resource, int type, const std::string& id)
    {
        const Reply reply = client.get(
            "/" + resource + "/associate?ASSOCIATEOBJTYPE=" + std::to_string(type) + "&ASSOCIATEOBJID=" + id);
        EXPECT_EQ(reply.code(), 0) << reply.text;
        return reply.ids();
    }

    std::string lunId, snapshotId, lunGroup, hostId, hostGroup, view;
};

TEST_F(SimulatorAssociation, EveryDirectionIsAnswered)
{
    EXPECT_THAT(found("lun", 256, lunGroup), ElementsAre(lunId));
    EXPECT_THAT(found("lun", 21, hostId), ElementsAre(lunId));
    EXPECT_THAT(found("lun", 245, view), ElementsAre(lunId));
    EXPECT_THAT(found("snapshot", 256, lunGroup), ElementsAre(snapshotId));
    EXPECT_THAT(found("snapshot", 21, hostId), ElementsAre(snapshotId));
    EXPECT_THAT(found("snapshot", 11, lunId), ElementsAre(snapshotId));
    EXPECT_THAT(found("lungroup", 11, lunId), ElementsAre(lunGroup));
    EXPECT_THAT(found("lungroup", 27, snapshotId), ElementsAre(lunGroup));
    EXPECT_THAT(found("lungroup", 245, view), ElementsAre(lunGroup));
    EXPECT_THAT(found("hostgroup", 21, hostId), ElementsAre(hostGroup));
    EXPECT_THAT(found("hostgroup", 245, view), ElementsAre(hostGroup));
    EXPECT_THAT(found("host", 14, hostGroup), ElementsAre(hostId));
    EXPECT_THAT(found("host", 11, lunId), ElementsAre(hostId));
    EXPECT_THAT(found("mappingview", 256, lunGroup), ElementsAre(view));
    EXPECT_THAT(found("mappingview", 14, hostGroup), ElementsAre(view));
    EXPECT_THAT(found("lun", 216, "0"), ElementsAre(lunId));
}

TEST_F(SimulatorAssociation, AHostSeesALunOnlyWhileEveryLinkIsThere)
{
    const auto sees = [&] { return found("lun", 21, hostId); };
    EXPECT_EQ(removeFromLunGroup(11, lunId).code(), 0);
    EXPECT_THAT(sees(), IsEmpty());
    EXPECT_EQ(addLun().code(), 0);
    EXPECT_THAT(sees(), ElementsAre(lunId));
    EXPECT_EQ(unbind(256, lunGroup).code(), 0);
    EXPECT_THAT(sees(), IsEmpty());
    EXPECT_EQ(bind(256, lunGroup).code(), 0);
    EXPECT_EQ(unbind(14, hostGroup).code(), 0);
    EXPECT_THAT(sees(), IsEmpty());
    EXPECT_EQ(bind(14, hostGroup).code(), 0);
    EXPECT_EQ(removeHost().code(), 0);
    EXPECT_THAT(sees(), IsEmpty());
    EXPECT_EQ(addHost().code(), 0);
    EXPECT_THAT(sees(), ElementsAre(lunId));
}

TEST_F(SimulatorAssociation, FlagsFollowFromTheAssociations)
{
    const auto flag = [&](const std::string& path, const char* key) {
        return client.get(path).data()[key].asString();
    };
    EXPECT_EQ(flag("/lun/" + lunId, "ISADD2LUNGROUP"), "true");
    EXPECT_EQ(flag("/lungroup/" + lunGroup, "ISADD2MAPPINGVIEW"), "true");
    EXPECT_EQ(flag("/hostgroup/" + hostGroup, "ISADD2MAPPINGVIEW"), "true");
    EXPECT_EQ(flag("/host/" + hostId, "ISADD2HOSTGROUP"), "true");
    EXPECT_EQ(flag("/lun/" + lunId, "EXPOSEDTOINITIATOR"), "false") << "the host has no initiator yet";
    client.create("/iscsi_initiator",
                  R"({"ID":"iqn.2001-01.org.example:a","PARENTTYPE":21,"PARENTID":")" + hostId + R"("})");
    EXPECT_EQ(flag("/lun/" + lunId, "EXPOSEDTOINITIATOR"), "true");
    unbind(14, hostGroup);
    unbind(256, lunGroup);
    removeHost();
    removeFromLunGroup(11, lunId);
    EXPECT_EQ(flag("/lun/" + lunId, "ISADD2LUNGROUP"), "false");
    EXPECT_EQ(flag("/lun/" + lunId, "EXPOSEDTOINITIATOR"), "false");
    EXPECT_EQ(flag("/lungroup/" + lunGroup, "ISADD2MAPPINGVIEW"), "false");
    EXPECT_EQ(flag("/hostgroup/" + hostGroup, "ISADD2MAPPINGVIEW"), "false");
    EXPECT_EQ(flag("/host/" + hostId, "ISADD2HOSTGROUP"), "false");
}

TEST_F(SimulatorAssociation, RepeatedAndMissingMembershipsHaveTheirCodes)
{
    EXPECT_EQ(addLun().code(), code::ALREADY_IN_LUN_GROUP);
    EXPECT_EQ(associate("POST", "/lungroup/associate", lunGroup, 27, snapshotId).code(),
              code::ALREADY_IN_LUN_GROUP);
    EXPECT_EQ(addHost().code(), code::HOST_ALREADY_IN_GROUP);
    EXPECT_EQ(bind(14, hostGroup).code(), code::ASSOCIATION_EXISTS);
    EXPECT_EQ(removeFromLunGroup(11, lunId).code(), 0);
    EXPECT_EQ(removeFromLunGroup(11, lunId).code(), code::NOT_IN_LUN_GROUP);
    EXPECT_EQ(removeFromLunGroup(27, snapshotId).code(), 0);
    EXPECT_EQ(removeFromLunGroup(27, snapshotId).code(), code::NOT_IN_LUN_GROUP);
    EXPECT_EQ(removeHost().code(), 0);
    EXPECT_EQ(removeHost().code(), code::ASSOCIATION_MISSING);
    EXPECT_EQ(unbind(14, hostGroup).code(), 0);
    EXPECT_EQ(unbind(14, hostGroup).code(), code::ASSOCIATION_MISSING);
}

TEST_F(SimulatorAssociation, AssociationsReferToWhatExists)
{
    EXPECT_EQ(associate("POST", "/lungroup/associate", lunGroup, 11, "99").code(), code::OBJECT_MISSING);
    EXPECT_EQ(associate("POST", "/lungroup/associate", "99", 11, lunId).code(), code::OBJECT_MISSING);
    EXPECT_EQ(associate("POST", "/lungroup/associate", lunGroup, 21, hostId).code(),
              code::ASSOCIATION_UNSUPPORTED);
    EXPECT_EQ(associate("POST", "/hostgroup/associate", hostGroup, 21, "99").code(), code::OBJECT_MISSING);
    EXPECT_EQ(bind(256, "99").code(), code::OBJECT_MISSING);
    EXPECT_EQ(removeFromLunGroup(11, "99").code(), code::OBJECT_MISSING);
    EXPECT_EQ(client.post("/lungroup/associate", R"({"ID":"1","ASSOCIATEOBJTYPE":"11","ASSOCIATEOBJID":"1"})")
                  .code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(client.post("/lungroup/associate", R"({"ID":"1","ASSOCIATEOBJTYPE":11})").code(),
              code::MEMBER_MISSING);
    EXPECT_EQ(client
                  .put("/mappingview/create_associate",
                       R"({"TYPE":14,"ID":"1","ASSOCIATEOBJTYPE":14,"ASSOCIATEOBJID":"1"})")
                  .code(),
              code::MEMBER_INVALID);
}

TEST_F(SimulatorAssociation, ObjectsInUseAreNotDeleted)
{
    for (const std::string& path : {"/lun/" + lunId, "/snapshot/" + snapshotId, "/lungroup/" + lunGroup,
                                    "/host/" + hostId, "/hostgroup/" + hostGroup, "/mappingview/" + view}) {
        const Reply refused = client.del(path);
        EXPECT_EQ(refused.code(), code::OBJECT_IN_USE) << path;
        EXPECT_THAT(refused.description(), HasSubstr("first"));
        EXPECT_EQ(client.get(path).code(), 0);
    }
    removeFromLunGroup(11, lunId);
    removeFromLunGroup(27, snapshotId);
    EXPECT_EQ(client.del("/lungroup/" + lunGroup).code(), code::OBJECT_IN_USE) << "still in the view";
    EXPECT_EQ(unbind(256, lunGroup).code(), 0);
    EXPECT_EQ(client.del("/lungroup/" + lunGroup).code(), 0);
    EXPECT_EQ(client.del("/mappingview/" + view).code(), 0) << "a view with one side exposes nothing";
    EXPECT_EQ(removeHost().code(), 0);
    EXPECT_EQ(client.del("/hostgroup/" + hostGroup).code(), 0);
    EXPECT_EQ(client.del("/host/" + hostId).code(), 0);
    EXPECT_EQ(client.del("/snapshot/" + snapshotId).code(), 0);
    EXPECT_EQ(client.del("/lun/" + lunId).code(), 0);
}

TEST_F(SimulatorAssociation, AViewBindsOneLunGroupToOneHostGroup)
{
    const Reply second = bind(256, named("/lungroup/", "second"));
    EXPECT_EQ(second.code(), code::ASSOCIATION_FULL);
    EXPECT_THAT(second.description(), HasSubstr("LUN group " + lunGroup));
    EXPECT_EQ(bind(14, named("/hostgroup", "second")).code(), code::ASSOCIATION_FULL);
}

TEST_F(SimulatorAssociation, AHostAndALunMayBeInSeveralGroups)
{
    const std::string otherHosts = named("/hostgroup", "hg2");
    EXPECT_EQ(associate("POST", "/hostgroup/associate", otherHosts, 21, hostId).code(), 0);
    EXPECT_THAT(found("hostgroup", 21, hostId), ElementsAre(hostGroup, otherHosts));
    const std::string otherLuns = named("/lungroup/", "lg2");
    EXPECT_EQ(associate("POST", "/lungroup/associate", otherLuns, 11, lunId).code(), 0);
    EXPECT_THAT(found("lungroup", 11, lunId), ElementsAre(lunGroup, otherLuns));
    EXPECT_THAT(found("lun", 21, hostId), ElementsAre(lunId)) << "listed once, whatever the ways";
}

} // namespace
