#include "unit/handlers/Exchange.h"

#include <tessel/Failure.h>

using testing::ElementsAreArray;

namespace {

std::vector<Exchange> readingOnes(const std::vector<Exchange>& all)
{
    std::vector<Exchange> some;
    for (const Exchange& exchange : all) {
        if (exchange.reads) {
            some.push_back(exchange);
        }
    }
    return some;
}

class EveryExchange : public HandlerTest, public testing::WithParamInterface<Exchange>
{
protected:
    /** Calls the operation with this answer to its request. */
    Outcome callWith(const Reply& answer);
};

class EveryReadingExchange : public EveryExchange
{
};

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

INSTANTIATE_TEST_SUITE_P(Lun, EveryExchange, testing::ValuesIn(lunExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(Lun, EveryReadingExchange, testing::ValuesIn(readingOnes(lunExchanges())),
                         exchangeName);
INSTANTIATE_TEST_SUITE_P(LunGroup, EveryExchange, testing::ValuesIn(lunGroupExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(LunGroup, EveryReadingExchange, testing::ValuesIn(readingOnes(lunGroupExchanges())),
                         exchangeName);
INSTANTIATE_TEST_SUITE_P(Snapshot, EveryExchange, testing::ValuesIn(snapshotExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(Snapshot, EveryReadingExchange, testing::ValuesIn(readingOnes(snapshotExchanges())),
                         exchangeName);

INSTANTIATE_TEST_SUITE_P(Host, EveryExchange, testing::ValuesIn(hostExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(Host, EveryReadingExchange, testing::ValuesIn(readingOnes(hostExchanges())),
                         exchangeName);
INSTANTIATE_TEST_SUITE_P(HostGroup, EveryExchange, testing::ValuesIn(hostGroupExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(HostGroup, EveryReadingExchange,
                         testing::ValuesIn(readingOnes(hostGroupExchanges())), exchangeName);
INSTANTIATE_TEST_SUITE_P(Iscsi, EveryExchange, testing::ValuesIn(iscsiExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(Iscsi, EveryReadingExchange, testing::ValuesIn(readingOnes(iscsiExchanges())),
                         exchangeName);
INSTANTIATE_TEST_SUITE_P(FC, EveryExchange, testing::ValuesIn(fcExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(FC, EveryReadingExchange, testing::ValuesIn(readingOnes(fcExchanges())),
                         exchangeName);

INSTANTIATE_TEST_SUITE_P(MappingView, EveryExchange, testing::ValuesIn(mappingViewExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(MappingView, EveryReadingExchange,
                         testing::ValuesIn(readingOnes(mappingViewExchanges())), exchangeName);
INSTANTIATE_TEST_SUITE_P(Port, EveryExchange, testing::ValuesIn(portExchanges()), exchangeName);
INSTANTIATE_TEST_SUITE_P(Port, EveryReadingExchange, testing::ValuesIn(readingOnes(portExchanges())),
                         exchangeName);

} // namespace
