// Why something failed: what is kept of a failure, for how long, and for whom.

#include "unit/session/SessionTest.h"

#include "session/LastFailure.h"
#include "storage/LunHandlerImpl.h"

#include <thread>

using namespace ovra::tessel;

namespace {

class LastFailure : public Session
{
protected:
    LastFailure() { clearFailure(); }

    CLunHandler& luns() { return static_cast<CLunHandler&>(*manager.getHandler(LUN_HANDLER)); }

    /** Reads a LUN, answered so; the exception's text, or none. */
    std::string read(const Reply& reply, const std::string& id = "7")
    {
        platform.reply(reply);
        try {
            luns().getLun(id);
        } catch (const OvraAPIException& thrown) {
            return thrown.what();
        }
        return "";
    }

    Failure failureOfLogin(const Reply& reply)
    {
        platform.reply(reply);
        EXPECT_FALSE(login());
        return lastFailure();
    }
};

struct Result
{
    int result;
    FailureKind kind;
    bool canTryAgain;
};

const Result RESULTS[] = {
    {2, FailureKind::HOST, false},
    {6, FailureKind::NOT_REACHABLE, true},
    {7, FailureKind::NOT_REACHABLE, true},
    {8, FailureKind::UNREADABLE_ANSWER, true},
    {27, FailureKind::HOST, true},
    {28, FailureKind::TIMED_OUT, true},
    {35, FailureKind::NOT_REACHABLE, true},
    {52, FailureKind::NOT_REACHABLE, true},
    {56, FailureKind::NOT_REACHABLE, true},
    {60, FailureKind::NOT_TRUSTED, false},
    {77, FailureKind::NOT_TRUSTED, false},
    {90, FailureKind::NOT_TRUSTED, false},
    {99, FailureKind::NOT_REACHABLE, true},
    {10001, FailureKind::NOT_LOGGED_IN, false},
    {10002, FailureKind::ARGUMENT, false},
    {10003, FailureKind::UNREADABLE_ANSWER, true},
    {10004, FailureKind::UNREADABLE_ANSWER, false},
    {10005, FailureKind::HOST, true},
};

} // namespace

TEST_F(LastFailure, IsNoneBeforeAnyAndBehindASuccess)
{
    EXPECT_FALSE(lastFailure());
    read(Reply::error(9, "no"));
    EXPECT_TRUE(lastFailure());
    EXPECT_EQ(read(Reply::object(R"({"ID":"7"})")), "");
    EXPECT_FALSE(lastFailure());
}

TEST_F(LastFailure, HasAKindForEveryResultOfTheRestLibraryThoughThatTellsNoMore)
{
    for (const Result& each : RESULTS) {
        read(Reply::noAnswer(each.result));
        const Failure failure = lastFailure();
        EXPECT_EQ(failure.kind, each.kind) << each.result;
        EXPECT_EQ(failure.canTryAgain, each.canTryAgain) << each.result;
        EXPECT_EQ(failure.result, each.result);
        EXPECT_EQ(failure.message, "url error or internet error getLun");
        EXPECT_EQ(failure.operation, "getLun");
        EXPECT_EQ(failure.transport, "");
    }
}

TEST_F(LastFailure, OfALoginIsTheArraysOwnWords)
{
    const Failure refused = failureOfLogin(Reply::error(1077949061, "wrong password"));
    EXPECT_EQ(refused.kind, FailureKind::REFUSED);
    EXPECT_EQ(refused.code, 1077949061);
    EXPECT_EQ(refused.description, "wrong password");
    EXPECT_EQ(refused.operation, "loginDevice");
    EXPECT_EQ(refused.message, "Login device fail,err msg:wrong password");
}

TEST_F(LastFailure, OfALoginTellsArgumentsTransportAndAnswersApart)
{
    EXPECT_FALSE(login(0));
    EXPECT_EQ(lastFailure().kind, FailureKind::ARGUMENT);
    EXPECT_FALSE(lastFailure().canTryAgain);
    EXPECT_EQ(failureOfLogin(Reply::noAnswer(60)).kind, FailureKind::NOT_TRUSTED);
    EXPECT_EQ(failureOfLogin(loggedIn({})).kind, FailureKind::UNREADABLE_ANSWER);
    EXPECT_EQ(failureOfLogin(loggedIn({"Set-Cookie: a=b;"}, "{}")).kind, FailureKind::UNREADABLE_ANSWER);
    EXPECT_FALSE(manager.useConnection("192.0.2.7", 8088, "", "T", "C"));
    EXPECT_EQ(lastFailure().kind, FailureKind::ARGUMENT);
    platform.reply(loggedIn());
    EXPECT_TRUE(login());
    EXPECT_FALSE(lastFailure());
}

TEST_F(LastFailure, OfKeepAliveAndLogoutNamesThem)
{
    platform.reply(Reply::error(5, "gone"));
    EXPECT_FALSE(manager.keepAlive());
    EXPECT_EQ(lastFailure().operation, "keepAlive");
    platform.reply(Reply::noAnswer(7));
    EXPECT_FALSE(manager.logoutDevice());
    EXPECT_EQ(lastFailure().operation, "logoutDevice");
}

TEST_F(LastFailure, OfAnAnswerWithAFieldThatCannotBeReadMayHaveBeenCarriedOut)
{
    read(Reply::object(R"({"ID":"7","NAME":{"a":1}})"));
    EXPECT_EQ(lastFailure().kind, FailureKind::UNREADABLE_ANSWER);
    EXPECT_TRUE(lastFailure().mayBeDone);
}

TEST_F(LastFailure, OfAnotherThreadIsItsOwn)
{
    read(Reply::error(9, "no"));
    std::thread([] { EXPECT_FALSE(lastFailure()); }).join();
    EXPECT_EQ(lastFailure().code, 9);
    clearFailure();
    EXPECT_FALSE(lastFailure());
}

TEST_F(LastFailure, KeepsTextsOfAnyLengthToAWholeCharacter)
{
    std::string longText;
    while (longText.size() < 5000) {
        longText += "\xE6\x97\xA5";
    }
    read(Reply::error(9, "x" + longText));
    EXPECT_EQ(lastFailure().description, "x" + longText.substr(0, 1020));
    read(Reply::error(9, longText));
    EXPECT_EQ(lastFailure().description, longText.substr(0, 1023));
    noteRefusal(9, std::string(5000, '\x80'), "getLun", "no text");
    EXPECT_EQ(lastFailure().description, "") << "there is no whole one";
}

TEST_F(LastFailure, IsFoundByItsExceptionBehindASuccessOrAnotherFailure)
{
    platform.reply(Reply::error(77, "in use, error code:5, description:x"));
    platform.reply(Reply::object(R"({"ID":"7"})"));
    platform.reply(Reply::noAnswer(7));
    try {
        luns().getLun("7");
        FAIL();
    } catch (const OvraAPIException& thrown) {
        luns().getLun("7");
        EXPECT_EQ(failureOf(thrown).description, "in use, error code:5, description:x");
        EXPECT_FALSE(lastFailure());
        EXPECT_THROW(luns().getLun("8"), OvraAPIException);
        EXPECT_EQ(failureOf(thrown).code, 77);
        EXPECT_EQ(failureOf(thrown).description, "in use, error code:5, description:x");
        EXPECT_EQ(failureOf(thrown).operation, "getLun");
        EXPECT_EQ(lastFailure().result, 7) << "asking changes nothing";
    }
}

TEST_F(LastFailure, OfForeignExceptionsIsWhatTheySay)
{
    const OvraAPIExceptionWithErrCode refused(4, "made by a mock");
    EXPECT_EQ(failureOf(refused).kind, FailureKind::REFUSED);
    EXPECT_EQ(failureOf(refused).message, "made by a mock");
    EXPECT_EQ(failureOf(OvraAPIException("")).kind, FailureKind::HOST);
    EXPECT_EQ(failureOf(OvraAPIException("url error or internet error getLun")).kind,
              FailureKind::NOT_REACHABLE);
    EXPECT_FALSE(lastFailure());
}

TEST_F(LastFailure, OfAStepSurvivesTheClearingUpBehindIt)
{
    EXPECT_THROW(calling(FailureKind::HOST,
                         [&] {
                             platform.reply(Reply::error(9, "no"));
                             try {
                                 luns().getLun("7");
                             } catch (const OvraAPIException&) {
                                 luns().getLun("8");
                                 throw;
                             }
                         }),
                 OvraAPIException);
    EXPECT_EQ(lastFailure().code, 9);
    calling(FailureKind::HOST, [&] { luns().getLun("8"); });
    EXPECT_FALSE(lastFailure());
    EXPECT_THROW(calling(FailureKind::HOST, [] { throw OvraAPIException("LUN 7: gone! LocalDisk"); }),
                 OvraAPIException);
    EXPECT_EQ(lastFailure().kind, FailureKind::HOST);
    EXPECT_EQ(lastFailure().operation, "LocalDisk");
}

TEST_F(LastFailure, OfACodeThatAsksForPatienceCanBeTriedAgain)
{
    for (const int code : {ARRAY_NOT_READY, ARRAY_LUN_GROUP_NOT_READY}) {
        read(Reply::error(code, "later"));
        EXPECT_TRUE(lastFailure().canTryAgain);
        EXPECT_EQ(lastFailure().reason, FailureReason::NOT_READY);
    }
}
