#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <thread>

namespace tessel_test {
namespace {

constexpr int RUNS = 100;

class ProcessEnd : public testing::Test
{
protected:
    ProcessEnd() { server.setHandler(&asArray); }

    /** How often each status was seen in many runs. */
    std::map<int, int> statusesOf(const char* way)
    {
        std::map<int, int> seen;
        for (int run = 0; run < RUNS; ++run) {
            ++seen[statusOf({ENDING_PROGRAM, way, "127.0.0.1", std::to_string(server.port())})];
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
