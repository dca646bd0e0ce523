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
#include <vector>

using namespace ovra::tessel;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

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

/** What an attach of the old kind has left of host 3: its host group, and a view that binds it to an empty
 * LUN group. */
class AnOldAttach : public AnUnusualArray
{
protected:
    AnOldAttach()
    {
        platform.replyWith([this](const SentRequest& request) { return answer(request.text()); });
    }

    static bool begins(const std::string& text, const std::string& beginning)
    {
        return text.rfind(beginning, 0) == 0;
    }

    Reply answer(const std::string& text)
    {
        const auto isRefused = [&](const std::string& beginning) { return begins(text, beginning); };
        if (std::any_of(refused.begin(), refused.end(), isRefused) ||
            (keepsBoundViews && isBound && begins(text, "DELETE /mappingview/4"))) {
            return Reply::error(NO);
        }
        isBound = isBound && !begins(text, "PUT /mappingview/remove_associate");
        isHostIn = (isHostIn && !begins(text, "DELETE /host/associate")) ||
                   begins(text, "POST /hostgroup/associate");
        if ((begins(text, "GET /hostgroup/associate") && isHostIn) || begins(text, "GET /hostgroup/6")) {
            return Reply::object(R"({"ID":"6","NAME":"hostgroup_1700000000"})");
        }
        if (text.find("/count?") != std::string::npos) {
            return Reply::object(R"({"COUNT":"0"})");
        }
        if (hasLunGroup && (begins(text, "GET /lungroup/associate") || begins(text, "GET /lungroup/5"))) {
            return Reply::object(R"({"ID":"5","NAME":"lungroup_1700000000","GROUPTYPE":"0"})");
        }
        return begins(text, "GET /mappingview/")
                   ? Reply::object(
                         R"({"ID":"4","NAME":"mappingview_1700000000","ENABLEINBANDCOMMAND":"false"})")
                   : Reply::ok();
    }

    /** What is told of each object that a tidy looks at. */
    std::vector<std::string> tidied()
    {
        TidyOptions tidying;
        tidying.isDryRun = false;
        std::vector<std::string> told;
        tidy(array.manager(), "3", tidying, [&](const TidyFinding& finding) {
            const bool isRemoved = finding.verdict == TidyFinding::REMOVED;
            told.push_back(finding.object.NAME + (isRemoved ? " removed" : " " + finding.reason));
            return true;
        });
        return told;
    }

    static constexpr int NO = 1073804556;
    std::vector<std::string> refused; ///< beginnings of requests
    bool keepsBoundViews = false;
    bool hasLunGroup = false;
    bool isBound = true;
    bool isHostIn = true;
};

TEST_F(AnOldAttach, WhoseViewIsKeptAsLongAsItBindsAHostGroupGivesItUpBehindThat)
{
    keepsBoundViews = true;
    EXPECT_THAT(tidied(), ElementsAre("mappingview_1700000000 removed", "hostgroup_1700000000 removed"));
    EXPECT_FALSE(isBound);
}

TEST_F(AnOldAttach, StaysWithAViewThatTheArrayKeeps)
{
    refused = {"DELETE /mappingview/4", "PUT /mappingview/remove_associate"};
    EXPECT_THAT(tidied(), ElementsAre(StartsWith("mappingview_1700000000 the array keeps it: "),
                                      "hostgroup_1700000000 mappingview_1700000000 stays"));
    EXPECT_TRUE(isHostIn);
}

TEST_F(AnOldAttach, StaysWithALunGroupThatTheArrayKeepsInItsView)
{
    hasLunGroup = true;
    refused = {"PUT /mappingview/remove_associate"};
    EXPECT_THAT(tidied(), ElementsAre(StartsWith("lungroup_1700000000 the array keeps it: "),
                                      "mappingview_1700000000 lungroup_1700000000 stays",
                                      "hostgroup_1700000000 mappingview_1700000000 stays"));
}

TEST_F(AnOldAttach, WhoseHostGroupKeepsItsHostIsLeftAsItIs)
{
    refused = {"DELETE /host/associate"};
    EXPECT_THAT(tidied(),
                ElementsAre("mappingview_1700000000 removed",
                            "hostgroup_1700000000 the array does not take the host out of it; the run log "
                            "says why"));
}

TEST_F(AnOldAttach, WhoseHostGroupIsKeptHasItsHostAgain)
{
    refused = {"DELETE /hostgroup/6"};
    EXPECT_THAT(tidied().back(), StartsWith("hostgroup_1700000000 the array keeps it: "));
    EXPECT_TRUE(isHostIn);
    refused.emplace_back("POST /hostgroup/associate");
    EXPECT_THAT(tidied().back(), EndsWith(" (and the host could not be put back into it)"));
    EXPECT_FALSE(isHostIn);
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
