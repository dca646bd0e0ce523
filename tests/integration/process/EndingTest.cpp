#include <MisbehavingServer.h>

#include <gtest/gtest.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <thread>

namespace tessel_test {
namespace {

constexpr int RUNS = 100;

/** An array as far as these programs need one. */
Behaviour asArray(const ReceivedRequest& request)
{
    return request.method() == "POST"
               ? Behaviour::success(R"({"deviceid":"device","iBaseToken":"token"})", "Set-Cookie: a=1;\r\n")
               : Behaviour::success(R"({"ID":"1"})");
}

class ProcessEnd : public testing::Test
{
protected:
    ProcessEnd() { server.setHandler(&asArray); }

    /** What waitpid tells of a run of the program. */
    int statusOf(const char* way)
    {
        std::string program = ENDING_PROGRAM;
        std::string wayText = way;
        std::string address = "127.0.0.1";
        std::string port = std::to_string(server.port());
        char* const arguments[] = {program.data(), wayText.data(), address.data(), port.data(), nullptr};
        setenv("OVRA_REST_CA_FILE", TestCertificates::instance().caFile().c_str(), 1);
        pid_t child = -1;
        int status = -1;
        if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) == 0) {
            waitpid(child, &status, 0);
        }
        return status;
    }

    /** How often each status was seen in many runs. */
    std::map<int, int> statusesOf(const char* way)
    {
        std::map<int, int> seen;
        for (int run = 0; run < RUNS; ++run) {
            ++seen[statusOf(way)];
        }
        return seen;
    }

    MisbehavingServer server;
};

TEST_F(ProcessEnd, AStaticObjectMayLogOutInItsDestructor)
{
    EXPECT_EQ((std::map<int, int>{{0, RUNS}}), statusesOf("static"));
    while (server.endedByClient() < server.accepts()) {
        std::this_thread::yield(); // the programs have ended, the server has yet to read it
    }
    EXPECT_EQ(server.accepts(), server.closeNotifies());
    const std::vector<ReceivedRequest> requests = server.requests();
    EXPECT_EQ(RUNS, std::count_if(requests.begin(), requests.end(), [](const ReceivedRequest& request) {
                  return request.method() == "DELETE" && request.header("iBaseToken") == "token";
              }));
}

TEST_F(ProcessEnd, ExitWhileThreadsAreInsideOperationsEndsTheProcessInOrder)
{
    EXPECT_EQ((std::map<int, int>{{0, RUNS}}), statusesOf("threads"));
    EXPECT_GT(server.requestCount(), 8U * RUNS);
}

} // namespace
} // namespace tessel_test
