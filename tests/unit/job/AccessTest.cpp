// Showing and tidying where the array does what one seldom does.

#include "support/RecordingPlatform.h"
#include "unit/observer/Recorder.h"

#include <tessel/Access.h>
#include <tessel/Failure.h>
#include <tessel/Tidy.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace ovra::tessel;

namespace {

/** Host 3 is in its host group, whose view has its LUN group; LUN 7 becomes visible by one of the adds. */
class AnUnusualArray : public testing::Test
{
protected:
    AnUnusualArray()
    {
        platform.reset();
        array.manager().useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
        platform.reset();
        platform.replyWith([this](const SentRequest& request) { return answerTo(request); });
        options.tries = 1;
    }

    Reply answerTo(const SentRequest& request)
    {
        const auto has = [&](const char* text) { return request.path.find(text) != std::string::npos; };
        if (has("/iscsi_initiator/")) {
            return Reply::object(initiator);
        }
        if (request.mode == REST_POST && has("/lungroup/associate")) {
            return ++adds < addThatWorks ? Reply::error(BUSY) : Reply::ok();
        }
        isTakenOut = isTakenOut || (request.mode == REST_DELETE && has("/lungroup/associate"));
        if (isTakenOut && has("associate")) {
            return Reply::ok();
        }
        if (has("/lun/associate") || has("/snapshot/associate")) {
            return adds >= addThatWorks ? Reply::object(R"({"ID":"7"})") : Reply::ok();
        }
        if (has("associate")) {
            return Reply::object(R"({"ID":"5","NAME":"tessel_host_3"})");
        }
        return Reply::object(R"({"ID":")" + request.path.substr(request.path.rfind('/') + 1) +
                             R"(","NAME":"tessel_host_3"})");
    }

    std::string shown(const StorageObject& object = StorageObject::lun("7"))
    {
        try {
            ensureVisible(array.manager(), object, HostInitiator::iscsi("iqn"), options);
        } catch (const OvraAPIException& refused) {
            return refused.what();
        }
        return "";
    }

    static constexpr int BUSY = 1077949006;
    RecordingPlatform& platform = RecordingPlatform::get();
    Array array;
    AccessOptions options;
    std::string initiator = R"({"ID":"iqn","PARENTID":"3"})";
    unsigned adds = 0;
    bool isTakenOut = false;
    unsigned addThatWorks = 1;
};

} // namespace

TEST_F(AnUnusualArray, ThatIsBusyOnceIsAskedOnceMoreAndTheJobIsDone)
{
    addThatWorks = 2;
    const Recording recording;
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(adds, 2U);
    const OperationEvent job = recording->calls("ensureVisible").at(0);
    EXPECT_TRUE(job.isDone) << "it reads back what its steps have done";
    EXPECT_EQ(job.code, 0);
    EXPECT_EQ(objectsOf(job), "lun 7, host 3; iqn");
}

TEST_F(AnUnusualArray, ThatNeverShowsTheObjectIsAskedTwiceInEachTry)
{
    addThatWorks = 100;
    EXPECT_EQ(shown(), "Exception:the host does not see the object; the run log says why! ensureVisible");
    EXPECT_EQ(adds, 2U);
}

TEST_F(AnUnusualArray, HasSnapshotsThatAreShownAndHiddenAsLunsAre)
{
    const StorageObject snapshot = StorageObject::snapshot("7");
    EXPECT_EQ(shown(snapshot), "");
    EXPECT_EQ(adds, 1U);
    const auto isAsked = [&](const std::string& beginning) {
        const auto requests = platform.requests();
        return std::any_of(requests.begin(), requests.end(), [&](const SentRequest& request) {
            return request.text().rfind(beginning, 0) == 0;
        });
    };
    EXPECT_FALSE(isAsked("GET /lun/"));
    ensureHidden(array.manager(), snapshot, HostInitiator::iscsi("iqn"), options);
    EXPECT_TRUE(isAsked("DELETE /lungroup/associate?ID=5&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=7"));
}

TEST_F(AnUnusualArray, ThatAnswersForAnInitiatorWithoutOneDoesNotKnowIt)
{
    initiator = "{}";
    EXPECT_EQ(shown(), "Exception:the array does not know the initiator iqn!");
}

TEST_F(AnUnusualArray, WhoseAnswerToABindingCannotBeReadIsToldAsThatThoughADeleteWasRefusedSince)
{
    platform.replyWith([this](const SentRequest& request) {
        addThatWorks = 2; // the object is not visible yet
        if (request.path.find("create_associate") != std::string::npos) {
            return Reply::noAnswer(REST_ANSWER_UNREADABLE);
        }
        if (request.mode == REST_DELETE) {
            return Reply::error(BUSY);
        }
        return request.path.find("/mappingview/associate") != std::string::npos ? Reply::ok()
                                                                                : answerTo(request);
    });
    try {
        ensureVisible(array.manager(), StorageObject::lun("7"), HostInitiator::iscsi("iqn"), options);
        FAIL();
    } catch (const OvraAPIException& thrown) {
        EXPECT_EQ(failureOf(thrown).kind, FailureKind::UNREADABLE_ANSWER) << thrown.what();
        EXPECT_EQ(lastFailure().message, failureOf(thrown).message);
    }
}

TEST_F(AnUnusualArray, ThatKeepsAViewAsLongAsItBindsAHostGroupGivesItUpBehindThat)
{
    bool isBound = true;
    bool isHostIn = true;
    platform.replyWith([&](const SentRequest& request) {
        const std::string text = request.text();
        const auto begins = [&](const char* beginning) { return text.rfind(beginning, 0) == 0; };
        if (begins("DELETE /mappingview/4")) {
            return isBound ? Reply::error(1073804556) : Reply::ok();
        }
        isBound = isBound && !begins("PUT /mappingview/remove_associate");
        isHostIn = isHostIn && !begins("DELETE /host/associate");
        if ((begins("GET /hostgroup/associate") && isHostIn) || begins("GET /hostgroup/6")) {
            return Reply::object(R"({"ID":"6","NAME":"hostgroup_1700000000"})");
        }
        return begins("GET /mappingview/")
                   ? Reply::object(
                         R"({"ID":"4","NAME":"mappingview_1700000000","ENABLEINBANDCOMMAND":"false"})")
                   : Reply::ok();
    });
    TidyOptions tidying;
    tidying.isDryRun = false;
    std::vector<std::string> told;
    const TidyResult result = tidy(array.manager(), "3", tidying, [&](const TidyFinding& finding) {
        told.push_back(finding.object.NAME + " " + finding.reason);
        return true;
    });
    EXPECT_EQ(result.removed, 2U) << testing::PrintToString(told);
    EXPECT_FALSE(isBound);
}

TEST_F(AnUnusualArray, IsNotAskedForWhatCannotBeShown)
{
    const auto refusal = [&](const StorageObject& object, const std::string& initiatorId) -> std::string {
        try {
            ensureVisible(array.manager(), object, HostInitiator::iscsi(initiatorId), options);
        } catch (const OvraAPIException& refused) {
            EXPECT_EQ(lastFailure().kind, FailureKind::ARGUMENT);
            return refused.what();
        }
        return "";
    };
    EXPECT_EQ(refusal({MO_HOST, "7"}, "iqn"),
              "Exception:the object is no LUN and no snapshot! ensureVisible");
    EXPECT_EQ(refusal(StorageObject::lun(""), "iqn"),
              "Exception:the ID of the object is empty! ensureVisible");
    EXPECT_EQ(refusal(StorageObject::lun("7"), ""),
              "Exception:the ID of the initiator is empty! ensureVisible");
    EXPECT_TRUE(platform.requests().empty());
}

TEST(AStepOnTheHost, HasAName)
{
    EXPECT_STREQ(nameOf(HostEvent::SCANNED), "scanned");
    EXPECT_STREQ(nameOf(HostEvent::REFUSED), "refused");
    EXPECT_STREQ(nameOf(static_cast<HostEvent::Step>(5)), "") << "of a later release";
}
