#include "ArrayTest.h"
#include "Codes.h"
#include "TlsConnection.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <stdexcept>
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

TEST_F(SimulatorFault, AnErrorHasTheStatusAndTheDescriptionAskedFor)
{
    array.addFault(R"({"action":"error","code":77,"status":503,"description":"closed today"})");
    const Reply closed = client.get("/lun");
    EXPECT_EQ(closed.status, 503);
    EXPECT_EQ(closed.description(), "closed today");
    array.addFault(R"({"action":"error"})");
    const Reply usual = client.get("/lun");
    EXPECT_EQ(usual.status, 200);
    EXPECT_EQ(usual.code(), 1);
    EXPECT_EQ(usual.description(), "injected fault");
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

TEST_F(SimulatorFault, AFaultCanBeBoundToASession)
{
    ArrayClient other(array);
    ASSERT_EQ(other.login().code(), 0);
    const Json::Value sessions = array.control("GET", "/sessions");
    ASSERT_EQ(sessions.size(), 2U);
    EXPECT_EQ(sessions[1]["number"].asUInt(), 2U);
    array.addFault(R"({"session":2,"action":"error","code":77,"count":0})");
    EXPECT_EQ(client.get("/lun").code(), 0);
    EXPECT_EQ(other.get("/lun").code(), 77);
    EXPECT_EQ(array.journal()[2]["session"].asUInt(), 1U);
    EXPECT_EQ(array.journal()[3]["session"].asUInt(), 2U);
}

TEST_F(SimulatorFault, AShareOfTheRequestsIsDrawnTheSameForTheSameSeed)
{
    const auto drawn = [&](int seed) {
        array.clearFaults();
        array.addFault((R"({"path":"/lun","action":"error","code":7,"count":0,"share":20,"seed":)" +
                        std::to_string(seed) + "}")
                           .c_str());
        std::vector<int> codes;
        for (int i = 0; i < 200; ++i) {
            codes.push_back(client.get("/lun").code());
        }
        return codes;
    };
    const std::vector<int> first = drawn(1);
    EXPECT_EQ(first, drawn(1));
    EXPECT_NE(first, drawn(2));
    const auto busy = std::count(first.begin(), first.end(), 7);
    EXPECT_GT(busy, 20);
    EXPECT_LT(busy, 70);
}

/** What a client gets from its connection in place of an answer: the errno, 0 for an ordinary end. */
int endOfConnection(const tessel_test::ArraySim& array)
{
    tessel_test::TlsConnection connection(array);
    EXPECT_TRUE(connection.isOpen());
    connection.send("GET /deviceManager/rest/x/lun HTTP/1.1\r\nHost: x\r\n\r\n");
    errno = 0;
    EXPECT_FALSE(connection.receive());
    return errno;
}

TEST_F(SimulatorFault, AConnectionCanEndWithAReset)
{
    array.addFault(R"({"action":"close"})");
    EXPECT_EQ(endOfConnection(array), 0);
    array.addFault(R"({"action":"reset"})");
    EXPECT_EQ(endOfConnection(array), ECONNRESET);
    EXPECT_EQ(client.get("/lun").code(), 0);
}

TEST_F(SimulatorFault, ASlowAnswerComesByteByByteAndWhole)
{
    array.addFault(R"({"action":"slow","pieceMs":2})");
    const auto start = std::chrono::steady_clock::now();
    const Reply reply = client.get("/lun");
    EXPECT_EQ(reply.code(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2 * reply.text.size()));
}

TEST_F(SimulatorFault, AnEndlessAnswerEndsWithTheArrayAtTheLatest)
{
    array.addFault(R"({"action":"endless"})");
    httplib::SSLClient reader(array.ip(), static_cast<int>(array.port()));
    reader.enable_server_certificate_verification(false);
    std::size_t received = 0;
    reader.Get("/deviceManager/rest/x/lun", [&](const char*, size_t size) {
        received += size;
        return received < 8U << 20;
    });
    EXPECT_GE(received, 8U << 20);
    array.addFault(R"({"action":"endless"})");
    std::thread waiting([&] {
        httplib::SSLClient patient(array.ip(), static_cast<int>(array.port()));
        patient.enable_server_certificate_verification(false);
        patient.Get("/deviceManager/rest/x/lun", [](const char*, size_t) { return true; });
    });
    while (array.faults()[1]["hits"].asUInt() == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(array.stop(), 0);
    waiting.join();
}

TEST_F(SimulatorFault, ARedirectNamesAnotherPlace)
{
    array.addFault(R"({"action":"redirect","location":"https://elsewhere.example/"})");
    const Reply reply = client.get("/lun");
    EXPECT_EQ(reply.status, 302);
    EXPECT_EQ(reply.headers.find("Location")->second, "https://elsewhere.example/");
    array.addFault(R"({"action":"redirect","location":"/","status":307})");
    EXPECT_EQ(client.get("/lun").status, 307);
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

TEST(SimulatorLoad, AnArrayCanBeBusyAndSlowFromItsStart)
{
    tessel_test::ArraySimOptions options;
    options.arguments = {"--busy", "100", "--busy-code", "17", "--answer-time", "30"};
    const tessel_test::ArraySim array(options);
    ArrayClient client(array);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.login().code(), 17);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    array.clearFaults();
    EXPECT_EQ(client.login().code(), 0);
}

TEST(SimulatorLoad, TheBusyRequestsAreThoseOfTheirSeed)
{
    const auto answered = [](const tessel_test::ArraySim& array) {
        ArrayClient client(array);
        std::vector<int> codes;
        for (int i = 0; i < 40; ++i) {
            codes.push_back(client.get("/lun").code());
        }
        return codes;
    };
    const auto busyFrom = [&](const char* seed) {
        tessel_test::ArraySimOptions options;
        options.arguments = {"--busy", "50", "--busy-seed", seed};
        return answered(tessel_test::ArraySim(options));
    };
    const tessel_test::ArraySim other;
    other.addFault(R"({"action":"error","code":1077949001,"share":50,"seed":7,"count":0})");
    const std::vector<int> drawn = answered(other);
    EXPECT_EQ(busyFrom("7"), drawn);
    EXPECT_NE(busyFrom("8"), drawn);
}

TEST(SimulatorCodes, ThoseOfItsOwnCanBeOthers)
{
    tessel_test::ArraySimOptions options;
    options.arguments = {"--shift-codes", "5000", "--settle", "1"};
    const tessel_test::ArraySim array(options);
    ArrayClient client(array);
    EXPECT_EQ(client.get("/lun").code(), code::SESSION_INVALID + 5000);
    EXPECT_EQ(client.login().code(), 0);
    EXPECT_EQ(client.get("/lun/1").code(), code::OBJECT_MISSING + 5000);
    client.create("/hostgroup", R"({"NAME":"g"})");
    EXPECT_EQ(client.get("/hostgroup/1").code(), code::OBJECT_SETTLING) << "known of every array";
}

} // namespace
