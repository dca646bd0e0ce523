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

/** A call with one text as every ID, and the path that it asks for. */
struct OddCall
{
    std::string path; ///< "*" stands for the encoded ID
    void (*call)(CDeviceManagerImpl&, const std::string& id);
};

using Id = const std::string&;

const OddCall ODD_CALLS[] = {
    {"/lun/*", [](M m, Id id) { lun(m).getLun(id); }},
    {"/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=*",
     [](M m, Id id) {
         LunQuery q;
         lun(m).getLunByLunGroup(id, q);
     }},
    {"/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m, Id id) {
         LunQuery q;
         lun(m).getLunByHost(id, q);
     }},
    {"/lungroup/*", [](M m, Id id) { lunGroup(m).deleteLunGroup(id); }},
    {"/lungroup/*", [](M m, Id id) { lunGroup(m).getLunGroup(id); }},
    {"/lungroup/associate?ID=*&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=*",
     [](M m, Id id) { lunGroup(m).removeLunFromLunGroup(id, id); }},
    {"/lungroup/associate?ID=*&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=*",
     [](M m, Id id) { lunGroup(m).removeSnapshotFromLunGroup(id, id); }},
    {"/lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=*",
     [](M m, Id id) {
         LunGroupQuery q;
         lunGroup(m).getLunGroupByLun(id, q);
     }},
    {"/lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=*",
     [](M m, Id id) { lunGroup(m).getLunGroupByMappingView(id); }},
    {"/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=*",
     [](M m, Id id) { outcomeOf([&] { lunGroup(m).getCountByAssociate(id, "lun"); }); }},
    {"/SNAPSHOT/*", [](M m, Id id) { snapshot(m).getSnapshot(id); }},
    {"/snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m, Id id) {
         SnapshotQuery q;
         snapshot(m).getSnapshotByHost(id, q);
     }},
    {"/host/*", [](M m, Id id) { host(m).getHost(id); }},
    {"/hostgroup/*", [](M m, Id id) { hostGroup(m).deleteHostGroup(id); }},
    {"/hostgroup/*", [](M m, Id id) { hostGroup(m).getHostGroup(id); }},
    {"/hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m, Id id) {
         HostGroupQuery q;
         hostGroup(m).getHostGroupByHost(id, q);
     }},
    {"/hostgroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=*",
     [](M m, Id id) { hostGroup(m).getHostGroupByMappingView(id); }},
    {"/host/associate?ID=*&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=*",
     [](M m, Id id) { hostGroup(m).removeHostFromHostGroup(id, id); }},
    {"/iscsi_initiator/*", [](M m, Id id) { iscsi(m).getIscsiInitiator(id); }},
    {"/iscsi_initiator/*", [](M m, Id id) { iscsi(m).deleteIscsiInitiator(id); }},
    {"/iscsi_initiator/*", [](M m, Id id) { iscsi(m).addIscsiInitiatorToHost(id, "3"); }},
    {"/fc_initiator/*", [](M m, Id id) { fc(m).getFCInitiator(id); }},
    {"/fc_initiator/*", [](M m, Id id) { fc(m).deleteFCInitiator(id); }},
    {"/fc_initiator/*", [](M m, Id id) { fc(m).addFCInitiatorToHost(id, "3"); }},
    {"/mappingview/*", [](M m, Id id) { mappingView(m).getMappingView(id); }},
    {"/mappingview/*", [](M m, Id id) { mappingView(m).deleteMappingView(id); }},
    {"/mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=14&ASSOCIATEOBJID=*",
     [](M m, Id id) {
         MappingViewQuery q;
         mappingView(m).getMappingViewByHostGroup(id, q);
     }},
    {"/FC_PORT/*", [](M m, Id id) { fcPort(m).getFCPort(id); }},
    {"/FCoE_PORT/*", [](M m, Id id) { fcoePort(m).getFCoEPort(id); }},
    {"/ETH_PORT/*", [](M m, Id id) { ethPort(m).getETHPort(id); }},
};

TEST_F(HandlerTest, NoIdLeavesItsPlaceInAPath)
{
    for (const OddCall& odd : ODD_CALLS) {
        std::string path = odd.path;
        for (size_t star = path.find('*'); star != std::string::npos; star = path.find('*')) {
            path.replace(star, 1, ENCODED);
        }
        odd.call(manager, ODD);
        EXPECT_EQ(platform.requests().back().path, path);
    }
}

TEST_F(HandlerTest, NoIdIsAStepInsideAPath)
{
    for (const OddCall& odd : ODD_CALLS) {
        if (odd.path.compare(0, 10, "/lun/count") == 0) {
            continue; // a worker, which checks nothing of its own; the ID is no step there
        }
        for (const char* const id : {".", ".."}) {
            platform.reset();
            const Outcome outcome = outcomeOf([&] { odd.call(manager, id); });
            EXPECT_EQ(outcome.kind, Outcome::FAILED) << odd.path;
            EXPECT_THAT(platform.requests(), testing::IsEmpty());
            EXPECT_THAT(platform.lines("error: The ID is . or .., which no object has! "),
                        testing::SizeIs(1));
            EXPECT_THAT(platform.lines("record"), testing::ElementsAre(testing::EndsWith(" 1")));
        }
        odd.call(manager, "...");
        EXPECT_THAT(platform.requests(), testing::SizeIs(1));
    }
}

TEST_F(HandlerTest, IdsOutOfAnswersAreNoStepsEither)
{
    platform.reply(Reply::list(R"([{"ID":".."}])"));
    LunQuery query;
    EXPECT_EQ(outcomeOf([&] { lun(manager).getLunByHost("3", query); }).kind, Outcome::FAILED);
    EXPECT_THAT(platform.requests(), testing::SizeIs(1));
}

TEST_F(HandlerTest, AFilterValueThatHoldsAConditionOfItsOwnIsRefused)
{
    const std::string text = "A filter value holds a condition of its own, which cannot be sent! ";
    for (const char* const value : {"x and NAME:y", "a and b:c", " and  ALLOCTYPE:1",
                                    "x and _y1:", "tom and jerry and NAME:y", "x and and NAME:y"}) {
        platform.reset();
        LunMO mo;
        mo.NAME = value;
        LunQuery query(mo, 0, 0);
        EXPECT_EQ(outcomeOf([&] { lun(manager).getLunByHost("3", query); }),
                  Outcome::failed(text + "getLunByCondition"))
            << value;
        EXPECT_THAT(platform.requests(), testing::IsEmpty());
        EXPECT_THAT(platform.lines("record"),
                    testing::ElementsAre("record! getLunByCondition 1", "record! getLunByHost 1"));
        FCPortMO port;
        port.ID = value;
        FCPortQuery ports(port, 0, 0);
        EXPECT_EQ(outcomeOf([&] { fcPort(manager).getFCPortBatch(ports); }),
                  Outcome::failed(text + "getFCPortBatch"));
    }
    for (const char* const value :
         {"tom and jerry", "sand and: x", "x andNAME:y", "xand NAME:y", "x and 1:2"}) {
        LunGroupMO mo;
        mo.NAME = value;
        LunGroupQuery query(mo, 0, 0);
        EXPECT_EQ(outcomeOf([&] { lunGroup(manager).getLunGroupByLun("3", query); }), Outcome::returned())
            << value;
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
