#include "session/Advice.h"

#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ovra::tessel::Failure;
using ovra::tessel::FailureKind;
using ovra::tessel::FailureReason;
using tesselctl::isTransportFailure;
using tesselctl::refusalOf;
using tesselctl::transportAdvice;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* ARRAY = "192.0.2.1:8088";

std::string adviceOf(FailureKind kind, FailureReason reason, const std::string& transport = "")
{
    Failure failure;
    failure.kind = kind;
    failure.reason = reason;
    failure.transport = transport;
    failure.operation = "getLun";
    return transportAdvice(failure, ARRAY);
}

TEST(Advice, isGivenOfEveryFailureWithoutAnAnswer)
{
    const std::pair<FailureKind, FailureReason> failures[] = {
        {FailureKind::NOT_REACHABLE, FailureReason::NOTHING_LISTENS},
        {FailureKind::NOT_REACHABLE, FailureReason::NO_ROUTE},
        {FailureKind::NOT_REACHABLE, FailureReason::NO_TLS},
        {FailureKind::NOT_REACHABLE, FailureReason::CONNECTION_ENDED},
        {FailureKind::NOT_REACHABLE, FailureReason::OTHER},
        {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_EXPIRED},
        {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_NOT_YET_VALID},
        {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_NAME},
        {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_PIN},
        {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_AUTHORITY},
        {FailureKind::NOT_TRUSTED, FailureReason::CA_FILE},
        {FailureKind::TIMED_OUT, FailureReason::SILENCE},
        {FailureKind::UNREADABLE_ANSWER, FailureReason::TOO_LARGE}};
    for (const auto& [kind, reason] : failures) {
        EXPECT_THAT(adviceOf(kind, reason),
                    AllOf(HasSubstr(ARRAY), HasSubstr("; "), Not(HasSubstr("%")), Not(HasSubstr("@"))))
            << static_cast<int>(kind) << ' ' << static_cast<int>(reason);
    }
    EXPECT_EQ(adviceOf(FailureKind::NONE, FailureReason::OTHER), "");
    EXPECT_EQ(adviceOf(FailureKind::REFUSED, FailureReason::NOT_READY), "");
    EXPECT_EQ(adviceOf(FailureKind::HOST, FailureReason::OTHER), "");
}

TEST(Advice, isThatOfTheReasonWhereThereIsOne)
{
    EXPECT_THAT(adviceOf(FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_EXPIRED),
                HasSubstr("has expired"));
    EXPECT_THAT(adviceOf(FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_AUTHORITY),
                HasSubstr("no authority"));
    EXPECT_THAT(adviceOf(FailureKind::NOT_TRUSTED, FailureReason::NO_ROUTE),
                HasSubstr("no authority")); // of another kind
    EXPECT_THAT(adviceOf(FailureKind::UNREADABLE_ANSWER, FailureReason::OTHER),
                HasSubstr("did not answer getLun as an array does"));
}

TEST(Advice, hasTheWordsOfTheTransportBetween)
{
    EXPECT_EQ(
        adviceOf(FailureKind::NOT_REACHABLE, FailureReason::NO_ROUTE, "no route to host"),
        "the array 192.0.2.1:8088 cannot be reached: no route to host; check the address and the network");
    EXPECT_EQ(adviceOf(FailureKind::NOT_REACHABLE, FailureReason::NO_ROUTE),
              "the array 192.0.2.1:8088 cannot be reached; check the address and the network");
}

TEST(Advice, transportFailuresAreThoseWithoutAnAnswer)
{
    for (const FailureKind kind :
         {FailureKind::NOT_LOGGED_IN, FailureKind::NOT_REACHABLE, FailureKind::NOT_TRUSTED,
          FailureKind::TIMED_OUT, FailureKind::UNREADABLE_ANSWER}) {
        Failure failure;
        failure.kind = kind;
        EXPECT_TRUE(isTransportFailure(failure)) << static_cast<int>(kind);
    }
    for (const FailureKind kind : {FailureKind::NONE, FailureKind::ARGUMENT, FailureKind::REFUSED,
                                   FailureKind::HOST, FailureKind::CANCELLED}) {
        Failure failure;
        failure.kind = kind;
        EXPECT_FALSE(isTransportFailure(failure)) << static_cast<int>(kind);
    }
}

TEST(Advice, aRefusalIsToldInTheArraysWordsWithItsCode)
{
    Failure failure;
    failure.code = 42;
    failure.operation = "createLun";
    EXPECT_EQ(refusalOf(failure), "no description (error code 42 of the array, createLun)");
    failure.description = "The name is in use. . ";
    EXPECT_EQ(refusalOf(failure), "The name is in use (error code 42 of the array, createLun)");
    failure.description = " ..";
    EXPECT_EQ(refusalOf(failure), "no description (error code 42 of the array, createLun)");
}

} // namespace
