#include "ProgramRun.h"

#include <gtest/gtest.h>

namespace tessel_test {
namespace {

TEST(AnOlderRestLibrary, ServesAProgramThatTheNewOneWouldTellMore)
{
    MisbehavingServer server;
    server.setHandler(&asArray);
    const std::vector<std::string> program = {OLDER_REST_PROGRAM, "127.0.0.1", std::to_string(server.port())};
    setenv("LD_LIBRARY_PATH", OLDER_REST_FOLDER, 1);
    const int status = statusOf(program);
    unsetenv("LD_LIBRARY_PATH");
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the step that went wrong";
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(statusOf(program)), 9) << "beside its own library the program must notice";
}

} // namespace
} // namespace tessel_test
