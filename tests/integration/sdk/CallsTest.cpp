// Calls that end: in time, when another thread says so, and with a session that has ended meanwhile.

#include "LoggedIn.h"
#include "MisbehavingServer.h"
#include "support/EveryOperation.h"
#include "support/OwnIpcNamespace.h"

#include <sys/ipc.h>
#include <sys/sem.h>

#include <algorithm>
#include <chrono>
#include <thread>

using namespace ovra::tessel;
using std::chrono::milliseconds;
using tessel_test::Behaviour;
using tessel_test::MisbehavingServer;
using tessel_test::PublicOperation;
using tessel_test::ReceivedRequest;
using tessel_test::TestCertificates;

namespace {

using Clock = std::chrono::steady_clock;

/** Between a cancel and the return of the call; a slow machine or a sanitizer takes more of the processor. */
constexpr milliseconds SOON{1000};
constexpr milliseconds PROMISED{50};

/** A server that logs in, and then never answers. */
class BlackHole : public testing::Test
{
protected:
    BlackHole()
    {
        trust(TestCertificates::instance().caFile(), 600, 600);
        server.setHandler([](const ReceivedRequest& request) {
            return request.target() == "/deviceManager/rest/xxxx/sessions"
                       ? Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})",
                                            "Set-Cookie: session=S1; path=/\r\n")
                       : Behaviour::neverAnswer();
        });
    }

    bool login()
    {
        return sdk.array().loginDevice("127.0.0.1", server.port(), "admin", "secret", USERTYPE_LOCAL);
    }

    /** Runs a call that another thread cancels once its request has arrived; how long it went on. */
    milliseconds cancelled(const std::function<void()>& call)
    {
        const Cancellation cancellation;
        Clock::time_point at;
        const unsigned before = server.requestCount();
        std::thread other([&] {
            const auto patience = Clock::now() + std::chrono::seconds(20);
            while (server.requestCount() == before && Clock::now() < patience) {
                std::this_thread::sleep_for(milliseconds(1));
            }
            at = Clock::now();
            cancellation.cancel();
        });
        {
            const CallLimit limit(cancellation);
            call();
        }
        const Clock::time_point end = Clock::now();
        other.join();
        return std::chrono::duration_cast<milliseconds>(end - at);
    }

    MisbehavingServer server;
    Sdk sdk;
};

} // namespace

TEST_F(BlackHole, EveryOperationOfTheHandlersIsCancelledAndItsRequestWasSentOnce)
{
    if (!enterOwnIpcNamespace()) {
        GTEST_SKIP() << "no IPC namespace of its own";
    }
    ASSERT_TRUE(login());
    const std::vector<PublicOperation> operations = tessel_test::operationsOfHandlers();
    ASSERT_EQ(operations.size(), 62U);
    std::vector<milliseconds> took;
    for (const PublicOperation& operation : operations) {
        sdk.array().getHandler(DISKSCANNER_HANDLER); // which runs a command when it is made
        const unsigned before = server.requestCount();
        took.push_back(cancelled([&] { thrownBy([&] { operation.call(sdk.array()); }); }));
        const Failure failure = lastFailure();
        EXPECT_LT(took.back(), SOON) << operation.name;
        EXPECT_EQ(server.requestCount(), before + 1) << operation.name;
        EXPECT_EQ(failure.kind, FailureKind::CANCELLED) << operation.name << ": " << failure.message;
        EXPECT_EQ(failure.result, 42) << operation.name;
        EXPECT_TRUE(failure.mayBeDone) << operation.name;
    }
    std::sort(took.begin(), took.end());
    EXPECT_LE(took[took.size() / 2], PROMISED);
    RecordProperty("longestMilliseconds", static_cast<int>(took.back().count()));
}

TEST_F(BlackHole, TheCallsOfTheSessionAreCancelled)
{
    ASSERT_TRUE(login());
    const std::function<bool()> calls[] = {
        [&] { return sdk.array().keepAlive(); },
        [&] { return sdk.array().logoutDevice(); },
        [&] {
            server.enqueue(Behaviour::neverAnswer());
            return login();
        },
    };
    for (const auto& call : calls) {
        EXPECT_LT(cancelled([&] { EXPECT_FALSE(call()); }), SOON);
        EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED);
    }
    const Cancellation cancellation;
    cancellation.cancel();
    const CallLimit limit(cancellation);
    EXPECT_TRUE(sdk.array().useConnection("127.0.0.1", server.port(), "D1", "T1", "session=S1"))
        << "sends nothing";
    EXPECT_NE(sdk.array().getHandler(LUN_HANDLER), nullptr);
}

TEST_F(BlackHole, WhatIsCancelledBeforeItBeginsSendsNothing)
{
    ASSERT_TRUE(login());
    const unsigned before = server.requestCount();
    const Cancellation cancellation;
    cancellation.cancel();
    {
        const CallLimit limit(cancellation);
        EXPECT_EQ(thrownBy([&] { sdk.luns().getLun("7"); }), "Exception:url error or internet error getLun");
        EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED);
        EXPECT_FALSE(lastFailure().mayBeDone);
    }
    EXPECT_EQ(server.requestCount(), before);
    EXPECT_TRUE(cancellation.isCancelled());
    cancellation.reset();
    EXPECT_FALSE(cancellation.isCancelled());
    EXPECT_TRUE(login()) << "behind the limit all is as before";
}

TEST_F(BlackHole, ADeadlineHoldsForAllCallsOfAThreadTogether)
{
    ASSERT_TRUE(login());
    const Clock::time_point start = Clock::now();
    {
        const CallLimit limit(milliseconds(200));
        const CallLimit longer(std::chrono::hours(1));
        for (int i = 0; i < 5; ++i) {
            thrownBy([&] { sdk.luns().getLun("7"); });
            EXPECT_EQ(lastFailure().kind, FailureKind::TIMED_OUT);
            EXPECT_EQ(lastFailure().result, 28);
        }
    }
    const auto took = Clock::now() - start;
    EXPECT_GE(took, milliseconds(200));
    EXPECT_LT(took, milliseconds(200) + SOON);
    EXPECT_EQ(server.requestCount(), 2U) << "the login, and the first read: the others are late";
}

TEST_F(BlackHole, ALimitOfADeviceManagerIsOneForEachOperation)
{
    ASSERT_TRUE(login());
    setCallLimit(sdk.array(), milliseconds(100));
    for (int i = 0; i < 2; ++i) {
        const Clock::time_point start = Clock::now();
        thrownBy([&] { sdk.luns().getLun("7"); });
        EXPECT_GE(Clock::now() - start, milliseconds(100));
        EXPECT_EQ(lastFailure().kind, FailureKind::TIMED_OUT);
    }
    EXPECT_EQ(server.requestCount(), 3U);
    const Cancellation cancellation;
    setCallLimit(sdk.array(), milliseconds(0), cancellation);
    std::thread other([&] {
        std::this_thread::sleep_for(milliseconds(20));
        cancellation.cancel();
    });
    thrownBy([&] { sdk.luns().getLun("7"); });
    other.join();
    EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED);
}

TEST_F(BlackHole, ACancelEndsTheConnectingToo)
{
    MisbehavingServer::Options options;
    options.silentOnConnect = true;
    const MisbehavingServer silent(options);
    const Cancellation cancellation;
    Clock::time_point at;
    std::thread other([&] {
        while (silent.accepts() == 0) {
            std::this_thread::sleep_for(milliseconds(1));
        }
        at = Clock::now();
        cancellation.cancel();
    });
    const CallLimit limit(cancellation);
    EXPECT_FALSE(sdk.array().loginDevice("127.0.0.1", silent.port(), "admin", "secret", USERTYPE_LOCAL));
    const Clock::time_point end = Clock::now();
    other.join();
    EXPECT_LT(end - at, SOON);
    EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED);
    EXPECT_FALSE(lastFailure().mayBeDone);
}

TEST_F(BlackHole, TheWaitForTheLockOfTheScansEnds)
{
    if (!enterOwnIpcNamespace()) {
        GTEST_SKIP() << "no IPC namespace of its own";
    }
    sdk.array().getHandler(DISKSCANNER_HANDLER);
    HostTransaction(0); // whoever makes the semaphore frees it, where it is the first one of all
    const int held = semget(1235, 1, IPC_CREAT | 0600);
    ASSERT_EQ(semctl(held, 0, SETVAL, 0), 0);
    server.setHandler([](const ReceivedRequest& request) {
        return request.method() == "POST"
                   ? Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})",
                                        "Set-Cookie: session=S1; path=/\r\n")
                   : Behaviour::success(R"({"ID":"7","WWN":"60a98000000000000000000000000007"})");
    });
    ASSERT_TRUE(login());
    for (const bool isTransaction : {false, true}) {
        const Cancellation cancellation;
        Clock::time_point at;
        std::thread other([&] {
            std::this_thread::sleep_for(milliseconds(100));
            at = Clock::now();
            cancellation.cancel();
        });
        {
            const CallLimit limit(cancellation);
            std::string id = "7";
            if (isTransaction) {
                EXPECT_THROW(HostTransaction(60), OvraAPIException);
            } else {
                EXPECT_EQ(sdk.handler<CDiskScannerHandler>(DISKSCANNER_HANDLER).scanLunAfterAttach(id), "");
            }
        }
        const Clock::time_point end = Clock::now();
        other.join();
        EXPECT_LT(end - at, SOON);
        EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED) << lastFailure().message;
    }
    const CallLimit limit(milliseconds(50));
    EXPECT_THROW(HostTransaction(60), OvraAPIException);
    EXPECT_EQ(lastFailure().kind, FailureKind::TIMED_OUT);
    semctl(held, 0, SETVAL, 1);
}

namespace {

class SessionThatEnds : public LoggedIn
{
protected:
    void supply(const std::string& password)
    {
        setCredentials(sdk.array(), [this, password](Credentials& credentials) {
            ++asked;
            credentials.userName = sim.user();
            credentials.password = password;
            return true;
        });
    }

    int asked = 0;
};

} // namespace

TEST_F(SessionThatEnds, IsOpenedAgainBeforeEachOfAThousandReadsAndNothingIsSentTwice)
{
    const std::string id = sim.createLun("db");
    supply(sim.password());
    sim.resetCounters();
    for (int i = 0; i < 1000; ++i) {
        sim.dropSessions();
        ASSERT_EQ(sdk.luns().getLun(id).NAME, "db") << i;
    }
    EXPECT_EQ(asked, 1000);
    EXPECT_EQ(sim.requests("POST", "/sessions"), 1000UL);
    EXPECT_EQ(sim.requests("GET", "/lun/{id}"), 2000UL);
    EXPECT_EQ(sim.requests("DELETE", "/sessions"), 0UL);
    EXPECT_EQ(sim.counters()["sessions"].asInt(), 1);
    EXPECT_FALSE(lastFailure());
}

TEST_F(SessionThatEnds, IsOpenedAgainForAChangeWhichIsNotSentTwice)
{
    supply(sim.password());
    for (int i = 0; i < 20; ++i) {
        const std::string id = sim.createLun("n" + std::to_string(i));
        LunGroupMO group;
        group.NAME = "g" + std::to_string(i);
        sim.resetCounters();
        sim.dropSessions();
        EXPECT_THROW(sdk.lunGroups().createLunGroup(group), OvraAPIExceptionWithErrCode);
        EXPECT_EQ(lastFailure().kind, FailureKind::REFUSED);
        EXPECT_EQ(lastFailure().operation, "createLunGroup") << "not the login between";
        EXPECT_EQ(sim.requests("POST", "/lungroup"), 1UL);
        const std::string made = sdk.lunGroups().createLunGroup(group).ID;
        EXPECT_NE(made, "") << "the next one has a session";
        sim.dropSessions();
        EXPECT_THROW(sdk.lunGroups().deleteLunGroup(made), OvraAPIExceptionWithErrCode);
        EXPECT_EQ(sim.requests("DELETE", "/lungroup/{id}"), 1UL);
    }
}

TEST_F(SessionThatEnds, IsLeftAloneByARefusalThatHasAnotherReason)
{
    supply(sim.password());
    sim.resetCounters();
    EXPECT_THROW(sdk.luns().getLun("77"), OvraAPIExceptionWithErrCode);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(sim.requests("POST", "/sessions"), 0UL);
    EXPECT_EQ(sim.requests("GET", "/lun/{id}"), 1UL);
}

TEST_F(SessionThatEnds, IsNotTriedWithAWrongPasswordAgainAndAgain)
{
    const std::string id = sim.createLun("db");
    supply("Wrong-password-1");
    sim.dropSessions();
    sim.resetCounters();
    for (int i = 0; i < 5; ++i) {
        EXPECT_THROW(sdk.luns().getLun(id), OvraAPIExceptionWithErrCode);
        EXPECT_EQ(lastFailure().operation, "getLun");
    }
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(sim.requests("POST", "/sessions"), 1UL);
    ASSERT_TRUE(login(sdk));
    supply(sim.password());
    sim.dropSessions();
    EXPECT_EQ(sdk.luns().getLun(id).NAME, "db");
}

TEST_F(SessionThatEnds, StaysEndedWithoutCredentialsOrWithASourceThatHasNone)
{
    const std::string id = sim.createLun("db");
    sim.dropSessions();
    sim.resetCounters();
    EXPECT_THROW(sdk.luns().getLun(id), OvraAPIExceptionWithErrCode);
    EXPECT_EQ(sim.requests("GET", "/server/logininfo"), 0UL) << "nothing is asked";
    setCredentials(sdk.array(), [](Credentials&) { return false; });
    EXPECT_THROW(sdk.luns().getLun(id), OvraAPIExceptionWithErrCode);
    setCredentials(sdk.array(), [](Credentials&) -> bool { throw 1; });
    EXPECT_THROW(sdk.luns().getLun(id), OvraAPIExceptionWithErrCode);
    EXPECT_EQ(sim.requests("POST", "/sessions"), 0UL);
}
