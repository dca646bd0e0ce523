// An attach and a detach of which each single request fails in turn.

#include "AttachFixture.h"

#include <iostream>
#include <sstream>

namespace {

struct Way
{
    const char* name;
    const char* fault;
};
const Way WAYS[] = {{"error answer", R"({"action":"error","code":1077949999,"description":"injected"})"},
                    {"cut before", R"({"action":"close"})"},
                    {"cut after", R"({"action":"close","performed":true})"}};

} // namespace

TYPED_TEST_SUITE(AttachTo, AttachedKinds, AttachedKindName);

/** Runs the call with the n-th of its requests failing; the outcome as text. */
template <class Test, class Call>
std::string outcome(Test& test, Call call, unsigned request, const Way& way, bool& struck)
{
    Json::Value fault;
    std::istringstream(way.fault) >> fault;
    fault["skip"] = request;
    fault["count"] = 2; // a read whose connection is cut is tried once more
    if (std::string(way.name) == "error answer") {
        fault["count"] = 1;
    }
    test.sim.addFault(fault);
    std::string text;
    try {
        text = "returned " + std::to_string(call());
    } catch (const OvraAPIExceptionWithErrCode& e) {
        text = "code " + std::to_string(e.getErrCode());
    } catch (const OvraAPIException& e) {
        text = e.what();
    }
    struck = test.sim.faults()[0]["hits"].asUInt() > 0;
    test.sim.clearFaults();
    return text;
}

template <class Test>
void startAfresh(Test& test)
{
    test.sim.reset();
    ASSERT_TRUE(test.login(test.sdk));
    test.prepare();
}

TYPED_TEST(AttachTo, SurvivesAFailureOfEachSingleRequestOfAnAttachAndASecondOneWorks)
{
    for (const Way& way : WAYS) {
        for (unsigned request = 0;; ++request) {
            startAfresh(*this);
            bool struck = false;
            const std::string result = outcome(
                *this, [&] { return this->attach(); }, request, way, struck);
            if (!struck) {
                EXPECT_GT(request, 15u) << "the attach is longer than that";
                break;
            }
            std::cout << way.name << " at request " << request << ": " << result << "; " << this->state()
                      << "\n";
            nextSecond();
            const int again = this->attach();
            EXPECT_TRUE(again == 0 || again == 1) << again;
            EXPECT_EQ(this->seenByHost(), 1u) << way.name << " at request " << request;
        }
    }
}

TYPED_TEST(AttachTo, SurvivesAFailureOfEachSingleRequestOfADetachAndASecondOneWorks)
{
    for (const Way& way : WAYS) {
        for (unsigned request = 0;; ++request) {
            startAfresh(*this);
            ASSERT_EQ(this->attach(), 0);
            bool struck = false;
            const std::string result = outcome(
                *this, [&] { return this->detach(); }, request, way, struck);
            if (!struck) {
                EXPECT_GT(request, 10u) << "the detach is longer than that";
                break;
            }
            std::cout << way.name << " at request " << request << ": " << result << "; " << this->state()
                      << "\n";
            EXPECT_EQ(this->detach(), 0);
            EXPECT_EQ(this->seenByHost(), 0u) << way.name << " at request " << request;
        }
    }
}
