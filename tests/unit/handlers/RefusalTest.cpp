// Arguments that an operation refuses, in the order in which it looks at them; nothing is sent.

#include "unit/handlers/HandlerTest.h"

#include <cctype>

namespace {

using namespace handlers;
using testing::ElementsAre;
using M = CDeviceManagerImpl&;

struct Refusal
{
    std::string operation;
    std::string text; ///< the operation's name follows
    std::function<void(CDeviceManagerImpl&)> call;
    std::string enters = operation;
};

void PrintTo(const Refusal& refusal, std::ostream* out)
{
    *out << refusal.operation << ": " << refusal.text;
}

std::string refusalName(const testing::TestParamInfo<Refusal>& info)
{
    std::string name = info.param.operation + "_";
    for (const char c : info.param.text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            name += c;
        }
    }
    return name;
}

class EveryRefusal : public HandlerTest, public testing::WithParamInterface<Refusal>
{
};

TEST_P(EveryRefusal, IsToldThrownAndRecordedWithCode1BeforeAnyRequest)
{
    const std::string message = GetParam().text + GetParam().operation;
    EXPECT_EQ(outcomeOf([&] { GetParam().call(manager); }), Outcome::failed(message));
    EXPECT_THAT(platform.journal(), ElementsAre(journal::enter(GetParam().enters), "error: " + message,
                                                "record! " + GetParam().operation + " 1"));
}

LunMO lunOf(const char* name, const char* pool)
{
    LunMO mo;
    mo.NAME = name;
    mo.PARENTID = pool;
    return mo;
}

const Refusal STORAGE[] = {
    {"createLun", "Lun name is empty! ",
     [](M m) {
         LunMO mo;
         lun(m).createLun(mo);
     }},
    {"createLun", "ParentID is empty! ",
     [](M m) {
         LunMO mo = lunOf("a", "");
         lun(m).createLun(mo);
     }},
    {"createLun", "Capacity value is initial value",
     [](M m) {
         LunMO mo = lunOf("a", "0");
         lun(m).createLun(mo);
     }},
    {"getLun", "lunID is empty! ", [](M m) { lun(m).getLun(""); }},
    {"getLunByLunGroup", "LunGroup id is empty! ",
     [](M m) {
         LunQuery q;
         lun(m).getLunByLunGroup("", q);
     }},
    {"getLunByHost", "hostID is empty! ",
     [](M m) {
         LunQuery q;
         lun(m).getLunByHost("", q);
     }},
    {"createLunGroup", "LunGroup name is empty! ",
     [](M m) {
         LunGroupMO mo;
         lunGroup(m).createLunGroup(mo);
     }},
    {"deleteLunGroup", "LunGroup id is empty! ", [](M m) { lunGroup(m).deleteLunGroup(""); }},
    {"getLunGroup", "LunGroup id is empty! ", [](M m) { lunGroup(m).getLunGroup(""); }},
    {"getObjNOFromLunGroup", "LunGroup id is empty! ", [](M m) { lunGroup(m).getObjNOFromLunGroup(""); },
     "getLunNOFromLunGroup"},
    {"addLunToLunGroup", "lunID is empty! ", [](M m) { lunGroup(m).addLunToLunGroup("", ""); }},
    {"addLunToLunGroup", "LunGroup id is empty! ", [](M m) { lunGroup(m).addLunToLunGroup("1", ""); }},
    {"removeLunFromLunGroup", "lunID is empty! ", [](M m) { lunGroup(m).removeLunFromLunGroup("", ""); }},
    {"removeLunFromLunGroup", "LunGroup id is empty! ",
     [](M m) { lunGroup(m).removeLunFromLunGroup("1", ""); }},
    {"addSnapshotToLunGroup", "snapshotID is empty! ",
     [](M m) { lunGroup(m).addSnapshotToLunGroup("", ""); }},
    {"addSnapshotToLunGroup", "LunGroup id is empty! ",
     [](M m) { lunGroup(m).addSnapshotToLunGroup("1", ""); }},
    {"removeSnapshotFromLunGroup", "snapshotID is empty! ",
     [](M m) { lunGroup(m).removeSnapshotFromLunGroup("", ""); }},
    {"removeSnapshotFromLunGroup", "LunGroup id is empty! ",
     [](M m) { lunGroup(m).removeSnapshotFromLunGroup("1", ""); }},
    {"getLunGroupByLun", "lunID is empty! ",
     [](M m) {
         LunGroupQuery q;
         lunGroup(m).getLunGroupByLun("", q);
     }},
    {"getLunGroupBySnapshot", "snapshotID is empty! ",
     [](M m) {
         LunGroupQuery q;
         lunGroup(m).getLunGroupBySnapshot("", q);
     }},
    {"getLunGroupByMappingView", "mappingViewID is empty! ",
     [](M m) { lunGroup(m).getLunGroupByMappingView(""); }},
    {"getSnapshot", "snapshotID is empty! ", [](M m) { snapshot(m).getSnapshot(""); }},
    {"getSnapshotByLunGroup", "LunGroup id is empty! ",
     [](M m) {
         SnapshotQuery q;
         snapshot(m).getSnapshotByLunGroup("", q);
     }},
    {"getSnapshotByHost", "hostID is empty! ",
     [](M m) {
         SnapshotQuery q;
         snapshot(m).getSnapshotByHost("", q);
     }},
};

const Refusal ACCESS[] = {
    {"createHost", "Host name is empty! ",
     [](M m) {
         HostMO mo;
         host(m).createHost(mo);
     }},
    {"getHost", "hostID is empty! ", [](M m) { host(m).getHost(""); }},
    {"createHostGroup", "HostGroup name is empty! ",
     [](M m) {
         HostGroupMO mo;
         hostGroup(m).createHostGroup(mo);
     }},
    {"deleteHostGroup", "HostGroupID is empty ", [](M m) { hostGroup(m).deleteHostGroup(""); }},
    {"getHostGroup", "HostGroupID is empty ", [](M m) { hostGroup(m).getHostGroup(""); }},
    {"addHostToHostGroup", "hostID is empty! ", [](M m) { hostGroup(m).addHostToHostGroup("", ""); }},
    {"addHostToHostGroup", "HostGroupID is empty ", [](M m) { hostGroup(m).addHostToHostGroup("1", ""); }},
    {"removeHostFromHostGroup", "hostID is empty! ",
     [](M m) { hostGroup(m).removeHostFromHostGroup("", ""); }},
    {"removeHostFromHostGroup", "HostGroupID is empty ",
     [](M m) { hostGroup(m).removeHostFromHostGroup("1", ""); }},
    {"getHostGroupByHost", "hostID is empty! ",
     [](M m) {
         HostGroupQuery q;
         hostGroup(m).getHostGroupByHost("", q);
     }},
    {"getHostGroupByMappingView", "mappingViewID is empty! ",
     [](M m) { hostGroup(m).getHostGroupByMappingView(""); }},
    {"createIscsiInitiator", "iscsiInitiatorID is empty! ",
     [](M m) {
         IscsiInitiatorMO mo;
         iscsi(m).createIscsiInitiator(mo);
     }},
    {"deleteIscsiInitiator", "iscsiInitiatorID is empty! ", [](M m) { iscsi(m).deleteIscsiInitiator(""); }},
    {"getIscsiInitiator", "iscsiInitiatorID is empty! ", [](M m) { iscsi(m).getIscsiInitiator(""); }},
    {"addIscsiInitiatorToHost", "iscsiInitiatorID is empty! ",
     [](M m) { iscsi(m).addIscsiInitiatorToHost("", ""); }},
    {"addIscsiInitiatorToHost", "hostID is empty! ",
     [](M m) { iscsi(m).addIscsiInitiatorToHost("iqn", ""); }},
    {"removeIscsiInitiatorFromHost", "iscsiInitiatorID is empty! ",
     [](M m) { iscsi(m).removeIscsiInitiatorFromHost(""); }},
    {"createFCInitiator", "fcInitiatorID is empty! ",
     [](M m) {
         FCInitiatorMO mo;
         fc(m).createFCInitiator(mo);
     }},
    {"deleteFCInitiator", "fcInitiatorID is empty! ", [](M m) { fc(m).deleteFCInitiator(""); }},
    {"getFCInitiator", "fcInitiatorID is empty! ", [](M m) { fc(m).getFCInitiator(""); }},
    {"addFCInitiatorToHost", "fcInitiatorID is empty! ", [](M m) { fc(m).addFCInitiatorToHost("", ""); }},
    {"addFCInitiatorToHost", "hostID is empty! ", [](M m) { fc(m).addFCInitiatorToHost("w", ""); }},
    {"removeFCInitiatorFromHost", "fcInitiatorID is empty! ",
     [](M m) { fc(m).removeFCInitiatorFromHost(""); }},
};

const Refusal MAPPING_AND_PORTS[] = {
    {"createMappingView", "MappingView name is empty! ",
     [](M m) {
         MappingViewMO mo;
         mappingView(m).createMappingView(mo);
     }},
    {"deleteMappingView", "mappingViewID is empty! ", [](M m) { mappingView(m).deleteMappingView(""); }},
    {"getMappingView", "mappingViewID is empty! ", [](M m) { mappingView(m).getMappingView(""); }},
    {"addLunGroupToMappingView", "LunGroup id is empty! ",
     [](M m) { mappingView(m).addLunGroupToMappingView("", ""); }},
    {"addLunGroupToMappingView", "mappingViewID is empty! ",
     [](M m) { mappingView(m).addLunGroupToMappingView("5", ""); }},
    {"removeLunGroupFromMappingView", "LunGroup id is empty! ",
     [](M m) { mappingView(m).removeLunGroupFromMappingView("", ""); }},
    {"removeLunGroupFromMappingView", "mappingViewID is empty! ",
     [](M m) { mappingView(m).removeLunGroupFromMappingView("5", ""); }},
    {"addHostGroupToMappingView", "HostGroupID is empty ",
     [](M m) { mappingView(m).addHostGroupToMappingView("", ""); }},
    {"addHostGroupToMappingView", "mappingViewID is empty! ",
     [](M m) { mappingView(m).addHostGroupToMappingView("5", ""); }},
    {"removeHostGroupFromMappingView", "HostGroupID is empty ",
     [](M m) { mappingView(m).removeHostGroupFromMappingView("", ""); }},
    {"removeHostGroupFromMappingView", "mappingViewID is empty! ",
     [](M m) { mappingView(m).removeHostGroupFromMappingView("5", ""); }},
    {"getMappingViewByLunGroup", "LunGroup id is empty! ",
     [](M m) {
         MappingViewQuery q;
         mappingView(m).getMappingViewByLunGroup("", q);
     }},
    {"getMappingViewByHostGroup", "HostGroupID is empty ",
     [](M m) {
         MappingViewQuery q;
         mappingView(m).getMappingViewByHostGroup("", q);
     }},
    {"getFCPort", "fcPortID is empty! ", [](M m) { fcPort(m).getFCPort(""); }},
    {"getFCoEPort", "fcoePortID is empty! ", [](M m) { fcoePort(m).getFCoEPort(""); }},
    {"getETHPort", "ethPortID is empty! ", [](M m) { ethPort(m).getETHPort(""); }},
};

INSTANTIATE_TEST_SUITE_P(Storage, EveryRefusal, testing::ValuesIn(STORAGE), refusalName);
INSTANTIATE_TEST_SUITE_P(Access, EveryRefusal, testing::ValuesIn(ACCESS), refusalName);
INSTANTIATE_TEST_SUITE_P(MappingAndPorts, EveryRefusal, testing::ValuesIn(MAPPING_AND_PORTS), refusalName);

TEST_F(HandlerTest, ModifyingAnInitiatorWithoutAnIdFailsInTheReadOfItsCurrentState)
{
    IscsiInitiatorMO initiator;
    const std::string message = "iscsiInitiatorID is empty! getIscsiInitiator";
    EXPECT_EQ(outcomeOf([&] { iscsi(manager).modifyIscsiInitiator(initiator); }), Outcome::failed(message));
    EXPECT_THAT(platform.journal(), testing::ElementsAreArray(journal::broken(
                                        "modifyIscsiInitiator", 1,
                                        journal::broken("getIscsiInitiator", 1, "error: " + message))));
}

TEST_F(HandlerTest, WorkersBehindPairsOfOperationsCheckNoArgumentsOfTheirOwn)
{
    LunGroupQuery query;
    lunGroup(manager).addObjToLunGroup("", "", MO_LUN, "caller");
    lunGroup(manager).removeObjFromLunGroup("", "", MO_SNAPSHOT, "caller");
    lunGroup(manager).getLunGroupByObjList("", query, MO_LUN, "caller");
    EXPECT_THAT(
        deeds(),
        ElementsAre("POST /lungroup/associate ID=string: ASSOCIATEOBJTYPE=int:11 ASSOCIATEOBJID=string:",
                    "DELETE /lungroup/associate?ID=&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=",
                    "GET /lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID="));
}

TEST_F(HandlerTest, ARefusedLunGroupKeepsItsUnsetApplicationType)
{
    LunGroupMO mo;
    EXPECT_EQ(outcomeOf([&] { lunGroup(manager).createLunGroup(mo); }).kind, Outcome::FAILED);
    EXPECT_EQ(mo.APPTYPE, 100);
}

} // namespace
