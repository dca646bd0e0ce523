#include "unit/handlers/ExchangeTest.h"

#include <tessel/Failure.h>

using testing::ElementsAreArray;

Exchange& Exchange::variant(const std::string& text)
{
    variantText = text;
    return *this;
}

Exchange& Exchange::loggedAs(const std::string& name)
{
    frames.front().logged = name;
    return *this;
}

Exchange& Exchange::closingAsEntered()
{
    frames.front().close = "enter ";
    return *this;
}

Exchange& Exchange::through(const std::string& worker, const std::string& errorName)
{
    frames.push_back({worker, worker, "leave "});
    errorsNamed = errorName;
    return *this;
}

Exchange& Exchange::throughRecordedAs(const std::string& worker, const std::string& recordName)
{
    frames.push_back({recordName, worker, "leave "});
    errorsNamed = recordName;
    return *this;
}

Exchange& Exchange::errorsAs(const std::string& caller)
{
    errorsNamed = caller;
    return *this;
}

Exchange& Exchange::after(const Reply& reply, const Lines& seen)
{
    repliesBefore.push_back(reply);
    seenBefore = seen;
    return *this;
}

Exchange& Exchange::reading(const Reply& replyWithData, const Lines& seen)
{
    reads = true;
    answer = replyWithData;
    seenAfter = seen;
    return *this;
}

Exchange& Exchange::then(const Reply& reply, const Lines& seen)
{
    repliesThen.push_back(reply);
    seenThen = seen;
    return *this;
}

Lines Exchange::succeeded() const
{
    Lines seen = journal::join(request, seenAfter);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        const bool outermost = frame + 1 == frames.rend();
        seen = journal::join(journal::enter(frame->logged), outermost ? seenBefore : Lines(), seen,
                             outermost ? seenThen : Lines(), "record " + frame->record + " 0",
                             "info: " + frame->close + frame->logged + " successfully!");
    }
    return seen;
}

Lines Exchange::failed(const std::string& message, int code) const
{
    Lines seen = journal::join(request, "error: " + message);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        const bool outermost = frame + 1 == frames.rend();
        seen = journal::join(journal::enter(frame->logged), outermost ? seenBefore : Lines(), seen,
                             "record! " + frame->record + " " + std::to_string(code));
    }
    return seen;
}

Outcome EveryExchange::callWith(const Reply& answer)
{
    for (const Reply& reply : GetParam().repliesBefore) {
        platform.reply(reply);
    }
    platform.reply(answer);
    for (const Reply& reply : GetParam().repliesThen) {
        platform.reply(reply);
    }
    return outcomeOf([&] { GetParam().run(manager); });
}

TEST_P(EveryExchange, IsOneRequestAndOneRecordBetweenItsLines)
{
    EXPECT_EQ(callWith(GetParam().answer), Outcome::returned());
    EXPECT_THAT(platform.journal(), ElementsAreArray(GetParam().succeeded()));
}

TEST_P(EveryExchange, WithoutAnAnswerThrowsAndRecordsTheTransportCode)
{
    const std::string message = journal::noAnswer(GetParam().errorsNamed);
    EXPECT_EQ(callWith(Reply::noAnswer(28)), Outcome::failed(message));
    EXPECT_THAT(platform.journal(), ElementsAreArray(GetParam().failed(message, 28)));
}

TEST_P(EveryExchange, ThrowsAndRecordsTheCodeOfAnErrorAnswer)
{
    const int code = 1073949185;
    const std::string message = journal::errorAnswer(code, "The array is busy.", GetParam().errorsNamed);
    EXPECT_EQ(callWith(Reply::error(code, "The array is busy.")), Outcome::errorAnswer(code, message));
    EXPECT_THAT(platform.journal(), ElementsAreArray(GetParam().failed(message, code)));
}

TEST_P(EveryExchange, GoesOutOnTheSessionNamedByTheLow32BitsOfTheDeviceManagersAddress)
{
    callWith(GetParam().answer);
    for (const SentRequest& request : platform.requests()) {
        EXPECT_TRUE(request.onSession);
        EXPECT_EQ(request.sessionKey, static_cast<unsigned int>(reinterpret_cast<uintptr_t>(&manager)));
        EXPECT_TRUE(request.flag);
        EXPECT_EQ(request.server, "");
        EXPECT_TRUE(request.headers.empty());
        EXPECT_TRUE(request.body.empty() || request.mode == REST_POST || request.mode == REST_PUT);
    }
    EXPECT_FALSE(platform.requests().empty());
}

TEST_P(EveryReadingExchange, TakesDataThatIsNoObjectForNoAnswer)
{
    for (const char* const data : {R"(["text"])", "[7]", "[true]", "[[]]"}) {
        platform.reset();
        const std::string message = journal::noAnswer(GetParam().errorsNamed);
        EXPECT_EQ(callWith(Reply::list(data)), Outcome::failed(message)) << data;
        EXPECT_THAT(platform.journal(), ElementsAreArray(GetParam().failed(message, REST_ANSWER_UNREADABLE)))
            << data;
    }
}

TEST_P(EveryExchange, LeavesItsFailureToBeAskedForAndItsSuccessNone)
{
    const Exchange& exchange = GetParam();
    callWith(Reply::error(1073949185, "The array is busy."));
    Failure failure = lastFailure();
    EXPECT_EQ(failure.kind, FailureKind::REFUSED);
    EXPECT_EQ(failure.code, 1073949185);
    EXPECT_EQ(failure.description, "The array is busy.");
    EXPECT_EQ(failure.operation, exchange.errorsNamed);
    EXPECT_EQ(failure.message, journal::errorAnswer(failure.code, failure.description, failure.operation));
    EXPECT_FALSE(failure.canTryAgain);

    callWith(Reply::noAnswer(28));
    failure = lastFailure();
    EXPECT_EQ(failure.kind, FailureKind::TIMED_OUT);
    EXPECT_EQ(failure.result, 28);
    EXPECT_EQ(failure.operation, exchange.errorsNamed);
    EXPECT_TRUE(failure.description.empty());
    EXPECT_TRUE(failure.canTryAgain);

    callWith(exchange.answer);
    EXPECT_FALSE(lastFailure());
}
