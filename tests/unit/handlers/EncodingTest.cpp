// IDs and names inside paths stay data, whatever they hold; in bodies they go out as they are.

#include "unit/handlers/HandlerTest.h"

#include "session/Url.h"

using namespace ovra::tessel;

namespace {

using namespace handlers;
using M = CDeviceManagerImpl&;

const std::string ODD = std::string("a%b&c#d+e?f/g\x01\x1f\x7f\n") + '\0' + "z";
const std::string ENCODED = "a%25b%26c%23d%2Be%3Ff%2Fg%01%1F%7F%0A%00z";

TEST(UrlValue, EncodesWhatWouldEndItOrBeginSomethingElseAndNothingMore)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const bool encoded =
            byte < 0x20 || byte == 0x7f || (byte != 0 && std::strchr("%&#+?/", byte) != nullptr);
        char expected[4] = {};
        std::snprintf(expected, sizeof(expected), "%%%02X", static_cast<unsigned int>(byte));
        EXPECT_EQ(urlValue(text), encoded ? std::string(expected) : text) << byte;
    }
    EXPECT_EQ(urlValue(ODD), ENCODED);
    EXPECT_EQ(urlValue(""), "");
}

/** A call with ODD as every ID, and the path that it asks for. */
struct OddCall
{
    std::string path; ///< "*" stands for the encoded ID
    void (*call)(CDeviceManagerImpl&);
};

const OddCall ODD_CALLS[] = {
    {"/lun/*", [](M m) { lun(m).getLun(ODD); }},
    {"/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=*",
     [](M m) {
         LunQuery q;
         lun(m).getLunByLunGroup(ODD, q);
     }},
    {"/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m) {
         LunQuery q;
         lun(m).getLunByHost(ODD, q);
     }},
    {"/lungroup/*", [](M m) { lunGroup(m).deleteLunGroup(ODD); }},
    {"/lungroup/*", [](M m) { lunGroup(m).getLunGroup(ODD); }},
    {"/lungroup/associate?ID=*&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=*",
     [](M m) { lunGroup(m).removeLunFromLunGroup(ODD, ODD); }},
    {"/lungroup/associate?ID=*&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=*",
     [](M m) { lunGroup(m).removeSnapshotFromLunGroup(ODD, ODD); }},
    {"/lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=*",
     [](M m) {
         LunGroupQuery q;
         lunGroup(m).getLunGroupByLun(ODD, q);
     }},
    {"/lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=*",
     [](M m) { lunGroup(m).getLunGroupByMappingView(ODD); }},
    {"/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=*",
     [](M m) { outcomeOf([&] { lunGroup(m).getCountByAssociate(ODD, "lun"); }); }},
    {"/SNAPSHOT/*", [](M m) { snapshot(m).getSnapshot(ODD); }},
    {"/snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m) {
         SnapshotQuery q;
         snapshot(m).getSnapshotByHost(ODD, q);
     }},
    {"/host/*", [](M m) { host(m).getHost(ODD); }},
    {"/hostgroup/*", [](M m) { hostGroup(m).deleteHostGroup(ODD); }},
    {"/hostgroup/*", [](M m) { hostGroup(m).getHostGroup(ODD); }},
    {"/hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m) {
         HostGroupQuery q;
         hostGroup(m).getHostGroupByHost(ODD, q);
     }},
    {"/hostgroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=*",
     [](M m) { hostGroup(m).getHostGroupByMappingView(ODD); }},
    {"/host/associate?ID=*&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m) { hostGroup(m).removeHostFromHostGroup(ODD, ODD); }},
    {"/iscsi_initiator/*", [](M m) { iscsi(m).getIscsiInitiator(ODD); }},
    {"/iscsi_initiator/*", [](M m) { iscsi(m).deleteIscsiInitiator(ODD); }},
    {"/iscsi_initiator/*", [](M m) { iscsi(m).addIscsiInitiatorToHost(ODD, "3"); }},
    {"/fc_initiator/*", [](M m) { fc(m).getFCInitiator(ODD); }},
    {"/fc_initiator/*", [](M m) { fc(m).deleteFCInitiator(ODD); }},
    {"/fc_initiator/*", [](M m) { fc(m).addFCInitiatorToHost(ODD, "3"); }},
    {"/mappingview/*", [](M m) { mappingView(m).getMappingView(ODD); }},
    {"/mappingview/*", [](M m) { mappingView(m).deleteMappingView(ODD); }},
    {"/mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=14&ASSOCIATEOBJID=*",
     [](M m) {
         MappingViewQuery q;
         mappingView(m).getMappingViewByHostGroup(ODD, q);
     }},
    {"/FC_PORT/*", [](M m) { fcPort(m).getFCPort(ODD); }},
    {"/FCoE_PORT/*", [](M m) { fcoePort(m).getFCoEPort(ODD); }},
    {"/ETH_PORT/*", [](M m) { ethPort(m).getETHPort(ODD); }},
};

TEST_F(HandlerTest, NoIdLeavesItsPlaceInAPath)
{
    for (const OddCall& odd : ODD_CALLS) {
        std::string path = odd.path;
        for (size_t star = path.find('*'); star != std::string::npos; star = path.find('*')) {
            path.replace(star, 1, ENCODED);
        }
        odd.call(manager);
        EXPECT_EQ(platform.requests().back().path, path);
    }
}

TEST_F(HandlerTest, NoNameAddsAConditionToAFilter)
{
    const auto expectFilter = [&](const char* keys) {
        EXPECT_THAT(platform.requests().back().path, testing::HasSubstr(keys));
    };
    LunMO lunFilter;
    lunFilter.ID = lunFilter.NAME = lunFilter.PARENTID = "x&TYPE=1";
    LunQuery luns(lunFilter, 0, 0);
    lun(manager).getLunByHost("3", luns);
    expectFilter("?filter=ID:x%26TYPE=1 and NAME:x%26TYPE=1 and PARENTID:x%26TYPE=1&TYPE=11&");
    SnapshotMO snapshotFilter;
    snapshotFilter.ID = snapshotFilter.NAME = snapshotFilter.PARENTID = "x#/?";
    SnapshotQuery snapshots(snapshotFilter, 0, 0);
    snapshot(manager).getSnapshotByHost("3", snapshots);
    expectFilter("?filter=ID:x%23%2F%3F and NAME:x%23%2F%3F and PARENTID:x%23%2F%3F&TYPE=27&");
    FCPortMO portFilter;
    portFilter.ID = portFilter.NAME = "100%+";
    FCPortQuery ports(portFilter, 0, 0);
    fcPort(manager).getFCPortBatch(ports);
    expectFilter("?filter=ID:100%25%2B and NAME:100%25%2B&");
}

TEST_F(HandlerTest, IdsInBodiesGoOutAsTheyAre)
{
    lunGroup(manager).addLunToLunGroup(ODD, ODD);
    mappingView(manager).addHostGroupToMappingView(ODD, ODD);
    iscsi(manager).removeIscsiInitiatorFromHost(ODD);
    fc(manager).addFCInitiatorToHost("w", ODD);
    for (const SentRequest& request : platform.requests()) {
        EXPECT_THAT(request.body, testing::Contains(testing::Pair(testing::_, "string:" + ODD)));
        EXPECT_THAT(request.path, testing::Not(testing::HasSubstr("%")));
    }
}

TEST_F(HandlerTest, IdsOutOfAnswersAreEncodedLikeTheCallers)
{
    platform.reply(Reply::list(R"([{"ID":"1/../host?x"}])"));
    LunQuery query;
    lun(manager).getLunByHost("3", query);
    EXPECT_EQ(platform.requests().back().path, "/lun/1%2F..%2Fhost%3Fx");
}

} // namespace
