#include "ArrayTest.h"
#include "Codes.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class SimulatorPort : public ArrayTest
{
};

TEST_F(SimulatorPort, BatchesTakeTheirOddSpellings)
{
    EXPECT_THAT(client.get("/FC_PORT?").ids(), ElementsAre("1", "2", "3", "4"));
    EXPECT_THAT(client.get("/FC_PORT?range=[1-3]").ids(), ElementsAre("2", "3"));
    EXPECT_THAT(client.get("/FC_PORT?filter=NAME:FC2&").ids(), ElementsAre("2"));
    EXPECT_THAT(client.get("/FC_PORT?filter=LOGICTYPE:0&range=[0-2]").ids(), ElementsAre("1", "2"));
    EXPECT_THAT(client.get("/FCoE_PORT?").ids(), SizeIs(2));
    EXPECT_THAT(client.get("/ETH_PORT?filter=ID:4%20and%20LOGICTYPE:1&").ids(), ElementsAre("4"));
    EXPECT_THAT(client.get("/ETH_PORT?filter=LOGICTYPE:7&").ids(), IsEmpty());
}

TEST_F(SimulatorPort, EveryFieldIsAText)
{
    const auto expectTexts = [&](const std::string& path, const std::vector<std::string>& keys) {
        const Json::Value port = client.get(path).data();
        for (const auto& key : keys) {
            EXPECT_TRUE(port[key].isString()) << path << " " << key;
        }
    };
    const std::vector<std::string> common{
        "ID", "NAME", "LOCATION", "HEALTHSTATUS", "RUNNINGSTATUS", "LOGICTYPE", "INIORTGT", "STARTTIME"};
    for (const std::string path : {"/FC_PORT/1", "/FCoE_PORT/1", "/ETH_PORT/1"}) {
        expectTexts(path, common);
    }
    expectTexts("/FC_PORT/1", {"RUNSPEED", "CONFSPEED", "WWN", "FCRUNMODE", "LOSTSIGNALS", "BADCHARNUMBER",
                               "LOSTSYNC", "LINKFAIL", "FLOGINDELAYTIMES", "MAXSUPPORTSPEED"});
    expectTexts("/FCoE_PORT/1",
                {"RUNSPEED", "WWN", "ERRORPACKETS", "LOSTPACKETS", "OVERFLOWEDPACKETS", "VLANID"});
    expectTexts("/ETH_PORT/4",
                {"MACADDRESS", "MTU", "ISCSITCPPORT", "ISCSINAME", "ERRORPACKETS", "LOSTPACKETS",
                 "OVERFLOWEDPACKETS", "SPEED", "IPV4MASK", "IPV4ADDRESS", "IPV6MASK", "IPV6ADDRESS"});
}

TEST_F(SimulatorPort, APortWithoutALinkHasNoNumberForItsSpeed)
{
    const Json::Value down = client.get("/FC_PORT/4").data();
    EXPECT_EQ(down["RUNSPEED"], "--");
    EXPECT_EQ(down["RUNNINGSTATUS"], "11");
}

TEST_F(SimulatorPort, PortsAreReadOnly)
{
    EXPECT_EQ(client.del("/FC_PORT/1").code(), code::METHOD_UNSUPPORTED);
    EXPECT_EQ(client.put("/ETH_PORT/1", "{}").code(), code::METHOD_UNSUPPORTED);
    EXPECT_EQ(client.post("/FCoE_PORT", "{}").code(), code::METHOD_UNSUPPORTED);
}

} // namespace
