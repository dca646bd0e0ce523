#ifndef CLI_CLI_H
#define CLI_CLI_H

#include "support/ArraySim.h"
#include "support/Folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

/** How one run of tesselctl ended. */
struct Outcome
{
    int exitCode = -1; ///< 128 + the signal where one ended it
    std::string out;
    std::string err;
    long peakKib = 0; ///< the most memory that it held at a time

    /** Standard output as JSON; the test fails when it is none. */
    Json::Value json() const;
    /** The last line of standard error as JSON. */
    Json::Value errorJson() const;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

using Words = std::vector<std::string>;

/** Runs the real tesselctl. */
class Cli
{
public:
    /** Of the environment the runs get PATH, what scripts/mutate needs and what is set here, nothing else. */
    std::map<std::string, std::string> environment;
    /** Runs in the new process before tesselctl does, e.g. to enter a namespace. */
    std::function<void()> prepare;

    Outcome run(const Words& words) const;
    /** The same with --output json. */
    Outcome json(Words words) const;
    /** A line of bash, which finds tesselctl by that name. */
    Outcome shell(const std::string& line) const;
    /** The environment that leads to an array and its trust. */
    void pointAt(const tessel_test::ArraySim& array);

private:
    Outcome execute(const char* program, const Words& words) const;
};

using tessel_test::Folder;

/** A test with an array of its own and a tesselctl that knows it. */
class CliTest : public ::testing::Test
{
protected:
    explicit CliTest(tessel_test::ArraySimOptions options = {}) : array(std::move(options))
    {
        cli.pointAt(array);
    }

    /** Runs, expects success and returns the "ID" of the record that was made. */
    std::string make(const Words& words) const;
    /** Runs and expects this exit code. */
    Outcome expect(int exitCode, const Words& words) const;

    tessel_test::ArraySim array;
    Cli cli;
};

/** The same with a LUN, a host with an initiator, and a group and view of each, not yet bound together. */
class MappingTest : public CliTest
{
protected:
    explicit MappingTest(tessel_test::ArraySimOptions options = {});
    /** Binds everything, so that the host sees the LUN. */
    void bindAll() const;

    const std::string iqn = "iqn.2024-05.org.example:web1";
    std::string lun;
    std::string host;
    std::string lunGroup;
    std::string hostGroup;
    std::string view;
};

#endif
