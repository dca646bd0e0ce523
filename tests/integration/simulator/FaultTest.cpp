#include "ArrayClient.h"
#include "Codes.h"

#include <chrono>
#include <thread>

namespace {

class SimulatorFault : public ArrayTest
{
};

TEST_F(SimulatorFault, AnErrorIsAnsweredAsOftenAsAskedAfterTheSkippedRequests)
{
    lun("a");
    array.addFault(
        R"({"method":"GET","path":"/lun/*","action":"error","code":77,"description":"busy","skip":1,"count":2})");
    std::vector<int> codes;
    for (int i = 0; i < 5; ++i) {
        codes.push_back(client.get("/lun/1").code());
    }
    EXPECT_EQ(codes, (std::vector<int>{0, 77, 77, 0, 0}));
    EXPECT_EQ(array.faults()[0]["hits"].asUInt(), 2U);
}

TEST_F(SimulatorFault, MethodPathAndQueryAllHaveToMatch)
{
    lun("a");
    array.addFault(
        R"({"method":"GET","path":"/lun/associate","query":"*ASSOCIATEOBJTYPE=216*","action":"error","code":9,"count":0})");
    EXPECT_EQ(client.get("/lun/1").code(), 0);
    EXPECT_EQ(client.get("/lun/associate?ASSOCIATEOBJTYPE=216&ASSOCIATEOBJID=0").code(), 9);
    EXPECT_EQ(client.get("/lun/associate?ASSOCIATEOBJTYPE=216&ASSOCIATEOBJID=0").code(), 9);
    EXPECT_EQ(client.get("/lun/associate?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=1").code(),
              code::OBJECT_MISSING);
    array.clearFaults();
    EXPECT_EQ(client.get("/lun/associate?ASSOCIATEOBJTYPE=216&ASSOCIATEOBJID=0").code(), 0);
}

TEST_F(SimulatorFault, AClosedConnectionGivesNoAnswerAndPerformsNothing)
{
    array.addFault(R"({"method":"POST","path":"/hostgroup","action":"close"})");
    EXPECT_FALSE(client.post("/hostgroup", R"({"NAME":"g"})").received);
    EXPECT_TRUE(client.get("/hostgroup").data().isNull());
    EXPECT_EQ(client.post("/hostgroup", R"({"NAME":"g"})").code(), 0);
}

TEST_F(SimulatorFault, AnAnswerCanBeLostAfterTheRequestWasPerformed)
{
    array.addFault(R"({"method":"POST","path":"/hostgroup","action":"close","performed":true})");
    EXPECT_FALSE(client.post("/hostgroup", R"({"NAME":"g"})").received);
    EXPECT_EQ(client.post("/hostgroup", R"({"NAME":"g"})").code(), code::NAME_TAKEN);
}

TEST_F(SimulatorFault, ATruncatedBodyEndsBeforeItsAnnouncedLength)
{
    array.addFault(R"({"path":"/server/logininfo","action":"truncate"})");
    EXPECT_FALSE(client.get("/server/logininfo").received);
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
    EXPECT_EQ(array.journal()[1]["fault"].asUInt(), 1U);
}

TEST_F(SimulatorFault, InvalidJsonAndFreeAnswersArriveWhole)
{
    array.addFault(R"({"action":"invalidJson"})");
    const Reply broken = client.get("/server/logininfo");
    EXPECT_TRUE(broken.received);
    EXPECT_EQ(broken.status, 200);
    EXPECT_FALSE(broken.text.empty());
    Json::Value parsed;
    std::istringstream stream(broken.text);
    EXPECT_FALSE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &parsed, nullptr));
    array.addFault(R"({"action":"answer","status":503,"body":"<html>"})");
    const Reply free = client.get("/server/logininfo");
    EXPECT_EQ(free.status, 503);
    EXPECT_EQ(free.text, "<html>");
}

TEST_F(SimulatorFault, ADroppedSessionRefusesTheRequestAndThoseAfterIt)
{
    array.addFault(R"({"path":"/lun*","action":"dropSession"})");
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
    EXPECT_EQ(client.get("/lun").code(), code::SESSION_INVALID);
    EXPECT_EQ(client.get("/server/logininfo").code(), code::SESSION_INVALID);
    EXPECT_EQ(client.login().code(), 0);
    EXPECT_EQ(client.get("/lun").code(), 0);
}

TEST_F(SimulatorFault, ADelayComesBeforeTheOrdinaryAnswer)
{
    array.addFault(R"({"action":"delay","delayMs":200})");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
}

TEST_F(SimulatorFault, ADelayDoesNotHoldUpTheEndOfTheArray)
{
    array.addFault(R"({"action":"delay","delayMs":600000})");
    std::thread waiting([&] { EXPECT_EQ(client.get("/server/logininfo").code(), 0); });
    while (array.faults()[0]["hits"].asUInt() == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(array.stop(), 0);
    waiting.join();
}

TEST_F(SimulatorFault, LoginsCanFailToo)
{
    array.addFault(
        R"({"method":"POST","path":"/sessions","action":"error","code":5,"description":"locked"})");
    ArrayClient other(array);
    EXPECT_EQ(other.login().code(), 5);
    EXPECT_EQ(other.login().code(), 0);
}

TEST_F(SimulatorFault, FaultsThatAreNotUnderstoodAreRefused)
{
    for (const char* fault :
         {R"({"path":"/lun"})", R"({"action":"explode"})", R"({"action":"error","code":"1"})",
          R"({"action":"error","paht":"/lun"})", R"({"action":"close","performed":1})"}) {
        EXPECT_THROW(array.addFault(fault), std::runtime_error) << fault;
    }
    const unsigned number = array.addFault(R"({"action":"close"})");
    array.control("DELETE", "/faults/" + std::to_string(number));
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
}

} // namespace
