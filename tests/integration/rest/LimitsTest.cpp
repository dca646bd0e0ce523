#include "RestFixture.h"

#include <ovra/rest/RestCall.h>
#include <ovra/rest/RestFailure.h>

#include <array>
#include <fcntl.h>
#include <fstream>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessel_test {
namespace {

constexpr size_t MOST_HEAD = 64UL * 1024;
constexpr size_t MOST_VALUE = 8UL * 1024;

class RestLimits : public RestFixture
{
protected:
    MisbehavingServer server;
};

TEST_F(RestLimits, ARequestHeadOfALittleLessThan64KiBIsSent)
{
    for (const REST_REQUEST_MODE_E mode : {REST_GET, REST_POST, REST_PUT, REST_DELETE}) {
        const std::string path = "/" + std::string(MOST_HEAD - 256, 'a');
        ASSERT_EQ(0, send(server.url(), path, mode).result) << mode;
        EXPECT_EQ(path, server.requests().back().target());
        EXPECT_LE(server.requests().back().head.size(), MOST_HEAD);
    }
}

TEST_F(RestLimits, ARequestHeadAbove64KiBIsRefusedAtOnce)
{
    for (const REST_REQUEST_MODE_E mode : {REST_GET, REST_POST, REST_PUT, REST_DELETE}) {
        for (const size_t size : {MOST_HEAD - 32, MOST_HEAD, 300000UL, 2000000UL}) {
            EXPECT_EQ(REST_BAD_REQUEST, send(server.url(), "/" + std::string(size, 'a'), mode).result)
                << mode << " " << size;
        }
    }
    EXPECT_EQ(0U, server.accepts());
}

TEST_F(RestLimits, TokenCookieAndDeviceIdOf8KiBAreSent)
{
    const std::string most(MOST_VALUE, 'v');
    ASSERT_TRUE(
        CUserManager::getInstance()->addUser(identity(), most, "127.0.0.1", server.port(), most, most, true));
    ASSERT_EQ(0, sendInSession("/lun/7").result);
    const ReceivedRequest received = server.requests().at(0);
    EXPECT_EQ("/deviceManager/rest/" + most + "/lun/7", received.target());
    EXPECT_EQ(most, received.header("iBaseToken"));
    EXPECT_EQ(most, received.header("Cookie"));
}

TEST_F(RestLimits, TokenCookieAndDeviceIdAbove8KiBAreRefusedAndTheSessionInForceStays)
{
    ASSERT_TRUE(openSession(server));
    const std::string tooLong(MOST_VALUE + 1, 'v');
    CUserManager& users = *CUserManager::getInstance();
    EXPECT_FALSE(users.addUser(identity(), tooLong, "127.0.0.1", server.port(), "t", "c", true));
    EXPECT_FALSE(users.addUser(identity(), "d", "127.0.0.1", server.port(), tooLong, "c", true));
    EXPECT_FALSE(users.addUser(identity(), "d", "127.0.0.1", server.port(), "t", tooLong, true));
    for (const HTTP_HEADER_E header : {HTTP_HEADER_TOKEN, HTTP_HEADER_COOKIE}) {
        RestRequest request;
        request.HeaderAddProperty(header, tooLong);
        EXPECT_EQ(REST_BAD_REQUEST, send(request, server.url(), "/x", REST_GET).result);
    }
    EXPECT_EQ(0U, server.accepts());
    ASSERT_EQ(0, sendInSession("/lun/7").result);
    EXPECT_EQ("/deviceManager/rest/dev-9/lun/7", server.requests().at(0).target());
    EXPECT_EQ("token-1", server.requests().at(0).header("iBaseToken"));
}

/** A LUN as an array tells it. */
std::string fullRecord(int number)
{
    const std::string id = std::to_string(number);
    return R"({"ID":")" + id + R"(","TYPE":11,"NAME":"database-)" + id +
           R"(","PARENTTYPE":216,"PARENTID":"0","PARENTNAME":"StoragePool001","HEALTHSTATUS":"1",)"
           R"("RUNNINGSTATUS":"27","DESCRIPTION":"","ALLOCTYPE":"1","CAPACITY":"2097152",)"
           R"("ALLOCCAPACITY":"0","ALLOCCAPACITYRAW":"0","THINCAPACITYUSAGE":"0","SECTORSIZE":"512",)"
           R"("EXPOSEDTOINITIATOR":"true","WWN":"6a08cf810075766e1efc050700000005",)"
           R"("OWNINGCONTROLLER":"0A","WORKINGCONTROLLER":"0A","ISADD2LUNGROUP":"1"})";
}

/** An array of many elements. */
template <class Element>
std::string arrayOf(int count, Element element)
{
    std::string array = "[";
    for (int i = 0; i < count; ++i) {
        array += element(i);
        array += i + 1 < count ? ',' : ']';
    }
    return array;
}

class RestMemory : public RestLimits
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "the sanitizers' own memory cannot be limited";
#endif
    }

    /** What a process that may take so much memory more gets of an answer; -1 when that is not enough. */
    Outcome receiveWithin(rlim_t bytes, const std::string& data, const char* keptMember = nullptr)
    {
        server.setDefault(Behaviour::success(data));
        std::array<int, 2> results = {-1, -1};
        EXPECT_EQ(0, pipe2(results.data(), O_CLOEXEC));
        const pid_t child = fork();
        if (child == 0) {
            long pages = 0;
            std::ifstream("/proc/self/statm") >> pages;
            const rlim_t most = static_cast<rlim_t>(pages * sysconf(_SC_PAGESIZE)) + bytes;
            const rlimit limit = {most, most};
            setrlimit(RLIMIT_AS, &limit);
            std::array<long, 2> told = {-1, 0};
            try {
                RestKeepMember(keptMember);
                const Outcome outcome = send(server.url());
                told = {outcome.result, static_cast<long>(outcome.count)};
            } catch (const std::bad_alloc&) {
                told[0] = -1;
            }
            _exit(write(results[1], told.data(), sizeof(told)) == sizeof(told) ? 0 : 1);
        }
        close(results[1]);
        std::array<long, 2> told = {-2, 0};
        EXPECT_EQ(static_cast<ssize_t>(sizeof(told)), ::read(results[0], told.data(), sizeof(told)));
        close(results[0]);
        waitpid(child, nullptr, 0);
        Outcome outcome;
        outcome.result = static_cast<int>(told[0]);
        outcome.count = static_cast<unsigned long>(told[1]);
        return outcome;
    }

    static constexpr rlim_t MIB = 1024UL * 1024;
};

TEST_F(RestMemory, AnAnswerOfTooManyValuesIsRefusedBeforeItIsRead)
{
    const std::string zeros = arrayOf(28500000, [](int) { return "0"; });
    EXPECT_EQ(REST_ANSWER_TOO_LARGE, receiveWithin(256 * MIB, zeros).result);
}

TEST_F(RestMemory, TheDearestAnswerOfAllTakesLessThanAGibibyte)
{
    const std::string data = arrayOf(1999990, [](int) { return R"({"a":"b"})"; });
    const Outcome outcome = receiveWithin(1024 * MIB, data);
    EXPECT_EQ(0, outcome.result);
    EXPECT_EQ(1999990U, outcome.count);
}

TEST_F(RestMemory, AHundredThousandFullRecordsAreReceived)
{
    const Outcome outcome = receiveWithin(512 * MIB, arrayOf(100000, &fullRecord));
    EXPECT_EQ(0, outcome.result);
    EXPECT_EQ(100000U, outcome.count);
}

TEST_F(RestMemory, AListOfWhichIdsAreKeptMayBeLargerThanAnAnswerThatIsKept)
{
    const std::string data = arrayOf(200000, &fullRecord);
    ASSERT_GT(data.size(), 64 * MIB);
    const Outcome outcome = receiveWithin(32 * MIB, data, "ID");
    EXPECT_EQ(0, outcome.result);
    EXPECT_EQ(200000U, outcome.count);
}

TEST_F(RestLimits, AnAnswerThatIsTooLargeIsToldWithItsSizeAndTheLimit)
{
    const std::string text(64UL * 1024 * 1024, 'x');
    server.setDefault(Behaviour::success("\"" + text + "\""));
    EXPECT_EQ(REST_ANSWER_TOO_LARGE, send(server.url()).result);
    EXPECT_STREQ("the answer is too large: 67108912 bytes, at most 67108864 can be kept",
                 RestLastFailure().text);
    server.setDefault(Behaviour::endlessBody());
    EXPECT_EQ(REST_ANSWER_TOO_LARGE, send(server.url()).result);
    EXPECT_STREQ("the answer is too large: more than 67108864 bytes", RestLastFailure().text);
    server.setDefault(Behaviour::endlessHeaders());
    EXPECT_EQ(REST_ANSWER_TOO_LARGE, send(server.url()).result);
    EXPECT_STREQ("the answer is too large: more than 262144 bytes of headers", RestLastFailure().text);
    server.setDefault(Behaviour::endlessHeaderLine());
    EXPECT_EQ(REST_ANSWER_TOO_LARGE, send(server.url()).result);
    EXPECT_STREQ("the answer is too large: more than 102400 bytes in a line of headers",
                 RestLastFailure().text);
    server.setDefault(Behaviour::success(arrayOf(4000010, [](int) { return "0"; })));
    EXPECT_EQ(REST_ANSWER_TOO_LARGE, send(server.url()).result);
    EXPECT_STREQ("the answer is too large: 4000015 values, at most 4000000 can be kept",
                 RestLastFailure().text);
}

} // namespace
} // namespace tessel_test
