#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <thread>

namespace tessel_test {
namespace {

constexpr int RUNS = 100;

/** A program that takes the libraries as they are installed, and one that holds them all in its one file. */
class ProcessEnd : public testing::TestWithParam<const char*>
{
protected:
    ProcessEnd()
    {
        char pattern[] = "/tmp/tessel-end-XXXXXX";
        m_state = mkdtemp(pattern);
        setenv("XDG_STATE_HOME", m_state.c_str(), 1); // where a program of one file logs to
        server.setHandler(&asArray);
    }
    ~ProcessEnd() override
    {
        unsetenv("ENDING_LOG_IN_BEFORE_MAIN");
        std::filesystem::remove_all(m_state);
    }

    /** How often each status was seen in many runs. */
    std::map<int, int> statusesOf(const char* way)
    {
        std::map<int, int> seen;
        for (int run = 0; run < RUNS; ++run) {
            ++seen[statusOf({GetParam(), way, "127.0.0.1", std::to_string(server.port())})];
        }
        return seen;
    }

    void expectLogoutsInOrder()
    {
        while (server.endedByClient() < server.accepts()) {
            std::this_thread::yield(); // the programs have ended, the server has yet to read it
        }
        EXPECT_EQ(server.accepts(), server.closeNotifies());
        const std::vector<ReceivedRequest> requests = server.requests();
        EXPECT_EQ(RUNS, std::count_if(requests.begin(), requests.end(), [](const ReceivedRequest& request) {
                      return request.method() == "DELETE" && request.header("iBaseToken") == "token";
                  }));
    }

    MisbehavingServer server;

private:
    std::string m_state;
};

TEST_P(ProcessEnd, AStaticObjectMayLogOutInItsDestructor)
{
    EXPECT_EQ((std::map<int, int>{{0, RUNS}}), statusesOf("static"));
    expectLogoutsInOrder();
}

TEST_P(ProcessEnd, AStaticObjectMayLogInInItsConstructor)
{
    setenv("ENDING_LOG_IN_BEFORE_MAIN", std::to_string(server.port()).c_str(), 1);
    EXPECT_EQ((std::map<int, int>{{0, RUNS}}), statusesOf("whole"));
    expectLogoutsInOrder();
}

TEST_P(ProcessEnd, ExitWhileThreadsAreInsideOperationsEndsTheProcessInOrder)
{
    EXPECT_EQ((std::map<int, int>{{0, RUNS}}), statusesOf("threads"));
    EXPECT_GT(server.requestCount(), 8U * RUNS);
}

INSTANTIATE_TEST_SUITE_P(Of, ProcessEnd, testing::Values(ENDING_PROGRAM, ENDING_ONE_FILE_PROGRAM),
                         [](const auto& program) {
                             return program.index == 0 ? "AProgramWithLibraries" : "AProgramOfOneFile";
                         });

} // namespace
} // namespace tessel_test
