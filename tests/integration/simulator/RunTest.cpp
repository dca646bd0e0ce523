#include "Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

/** The words that run a shell script beside an array. */
std::vector<std::string> beside(const std::string& script, std::vector<std::string> options = {})
{
    options.insert(options.begin(), TESSEL_ARRAYSIM);
    options.insert(options.end(), {"--run", "bash", "-c", script});
    return options;
}

TEST(SimulatorRun, TheCommandFindsTheArrayInItsEnvironment)
{
    Program program(
        beside("exec 3<>/dev/tcp/$TESSEL_ARRAYSIM_ADDRESS/$TESSEL_ARRAYSIM_PORT && echo reached;"
               "[ $TESSEL_ARRAY = $TESSEL_ARRAYSIM_ADDRESS:$TESSEL_ARRAYSIM_PORT ] && echo named;"
               "[ $OVRA_REST_CA_FILE = $TESSEL_ARRAYSIM_STATE/ca.pem ] && grep BEGIN $OVRA_REST_CA_FILE;"
               "echo $TESSEL_USER $TESSEL_PASSWORD $TESSEL_ARRAYSIM_PINNED_KEY $TESSEL_ARRAYSIM_CONTROL"));
    EXPECT_THAT(program.read(), MatchesRegex("reached\nnamed\n-----BEGIN CERTIFICATE-----\n"
                                             "admin [0-9a-f]+ sha256//[^ ]+ http://127.0.0.1:[0-9]+\n"));
    EXPECT_EQ(program.wait(), 0);
}

TEST(SimulatorRun, TheArrayHasAPortOfItsOwn)
{
    Program program(beside("echo $TESSEL_ARRAYSIM_PORT"));
    EXPECT_NE(program.read(), "8088\n") << "where another one may be";
    EXPECT_EQ(program.wait(), 0);
}

TEST(SimulatorRun, TheCommandSeesNoSettingsForAnotherArray)
{
    Program program(
        beside("env | grep -E '^(OVRA_REST_(PINNED|INSECURE)|TESSEL_(TOKEN|COOKIE))'; env | grep -c SEVENTH"),
        [] {
            for (const char* name :
                 {"OVRA_REST_PINNED_KEY", "OVRA_REST_INSECURE", "TESSEL_TOKEN", "TESSEL_COOKIE", "SEVENTH"}) {
                ::setenv(name, "1", 1);
            }
        });
    EXPECT_EQ(program.read(), "1\n") << "its other variables are as they were";
}

TEST(SimulatorRun, ItEndsWithTheStatusOfTheCommand)
{
    EXPECT_EQ(Program(beside("exit 0")).wait(), 0);
    EXPECT_EQ(Program(beside("exit 7")).wait(), 7);
    EXPECT_EQ(Program(beside("kill -TERM $$")).wait(), 128 + SIGTERM);
    EXPECT_EQ(Program(beside("kill -KILL $$")).wait(), 128 + SIGKILL);
}

TEST(SimulatorRun, TheStatusIsRightUnderACallerThatIgnoresItsChildren)
{
    EXPECT_EQ(Program(beside("exit 7"), [] { std::signal(SIGCHLD, SIG_IGN); }).wait(), 7);
}

TEST(SimulatorRun, SignalsGoToTheCommandWhichDecides)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        Program program(
            beside("trap 'echo told; exit 3' TERM INT HUP QUIT; echo ready; while :; do sleep 0.02; done"));
        ASSERT_THAT(program.read("ready\n"), HasSubstr("ready"));
        ::kill(program.pid(), signal);
        EXPECT_EQ(program.read(), "told\n");
        EXPECT_EQ(program.wait(), 3) << signal;
    }
}

TEST(SimulatorRun, TheCommandHasTheSignalsOfTheCaller)
{
    // The C library ignores two signals of its own, above these 31, in what it starts.
    const std::string masks = "while read -r name mask; do [[ $name != Sig[BI]* ]] || "
                              "echo $name $((0x$mask & 0x7fffffff)); done </proc/self/status";
    Program program(beside(masks));
    Program direct({"bash", "-c", masks});
    EXPECT_EQ(program.read(), direct.read());
}

TEST(SimulatorRun, WhatFollowsIsTheCommandsAlone)
{
    Program program({TESSEL_ARRAYSIM, "--run", "echo", "--port", "x", "--help", "--run"});
    EXPECT_EQ(program.read(), "--port x --help --run\n");
    EXPECT_EQ(program.wait(), 0);
}

TEST(SimulatorRun, ItsStateGoesWithItUnlessADirectoryIsNamed)
{
    Program gone(beside("echo -n $TESSEL_ARRAYSIM_STATE"));
    const std::string temporary = gone.read();
    EXPECT_EQ(gone.wait(), 0);
    EXPECT_FALSE(temporary.empty());
    EXPECT_FALSE(std::filesystem::exists(temporary));
    const std::string named = testing::TempDir() + "simulator-run-" + std::to_string(::getpid());
    EXPECT_EQ(Program(beside(":", {"--state-dir", named})).wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(named + "/array.db"));
    std::filesystem::remove_all(named);
}

TEST(SimulatorRun, ACommandThatCannotRunIsTold)
{
    Program missing({TESSEL_ARRAYSIM, "--run", "/no/such/program"});
    EXPECT_THAT(missing.read(), HasSubstr("cannot run /no/such/program: No such file"));
    EXPECT_EQ(missing.wait(), 127);
    EXPECT_EQ(Program({TESSEL_ARRAYSIM, "--run", "/"}).wait(), 126);
    Program noArray({TESSEL_ARRAYSIM, "--state-dir", "/proc/none/such", "--run", "true"});
    EXPECT_EQ(noArray.wait(), 125);
    Program both({TESSEL_ARRAYSIM, "--stop-on-stdin-eof", "--run", "true"});
    EXPECT_THAT(both.read(), HasSubstr("leaves the standard input to the command"));
    EXPECT_NE(both.wait(), 0);
    Program none({TESSEL_ARRAYSIM, "--run"});
    EXPECT_THAT(none.read(), HasSubstr("needs a command"));
    EXPECT_NE(none.wait(), 0);
}

} // namespace
