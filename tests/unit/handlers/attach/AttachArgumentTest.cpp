// What attaching and detaching check before they send anything, and the handlers that they fetch.

#include "unit/handlers/attach/AttachTest.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::map<int, std::string> MISSING = {
    {2, "get LunHandler fail! "},         {3, "get LunGroupHandler fail! "},
    {4, "get HostHandler fail! "},        {5, "get HostGroupHandler fail! "},
    {6, "get MappingViewHandler fail! "}, {7, "get IscsiInitiatorHandler fail! "},
    {8, "get SnapshotHandler fail! "},
};

class AttachArguments : public AttachTest
{
protected:
    /** The call fails with the message before any request, under the operation's own name. */
    void expectRefused(const std::function<void()>& call, const std::string& operation,
                       const std::string& text)
    {
        describeArray();
        const std::string message = text + operation;
        EXPECT_EQ(outcomeOf(call), Outcome::failed(message));
        EXPECT_THAT(platform.journal(), ElementsAre(journal::enter(operation), "error: " + message,
                                                    "record! " + operation + " 1"));
    }

    /** With every handler missing from one on, that one is named, and none behind it is asked for. */
    void expectFetchedInOrder(const std::vector<int>& order, const std::string& operation,
                              const std::function<void()>& call)
    {
        for (size_t first = 0; first < order.size(); ++first) {
            partial.missing = {order.begin() + static_cast<std::ptrdiff_t>(first), order.end()};
            partial.asked.clear();
            expectRefused(call, operation, MISSING.at(order[first]));
            EXPECT_THAT(partial.asked, ElementsAreArray(order.data(), first + 1));
        }
        for (const int only : order) {
            partial.missing = {only};
            expectRefused(call, operation, MISSING.at(only));
        }
    }
};

TEST_P(AttachArguments, AreTheObjectThenTheInitiatorThenTheDeviceManager)
{
    CDiskAttachHandlerImpl alone;
    const auto& kind = GetParam();
    const auto attachAlone = [&](const char* id, const char* initiator) {
        (alone.*kind.attachToHost)(id, initiator, "192.0.2.9");
    };
    const auto detachAlone = [&](const char* id, const char* initiator) {
        (alone.*kind.detachFromHost)(id, initiator);
    };
    expectRefused([&] { attachAlone("", ""); }, kind.attach, kind.idEmpty);
    expectRefused([&] { attachAlone("7", ""); }, kind.attach, "iscsiInitiatorID is empty! ");
    expectRefused([&] { attachAlone("7", "iqn"); }, kind.attach, "deviceManage is NULL! ");
    expectRefused([&] { detachAlone("", ""); }, kind.detach, kind.idEmpty);
    expectRefused([&] { detachAlone("7", ""); }, kind.detach, "iscsiInitiatorID is empty! ");
    expectRefused([&] { detachAlone("7", "0"); }, kind.detach, "deviceManage is NULL! ");
}

TEST_P(AttachArguments, NameTheFirstHandlerThatIsMissingWhenAttaching)
{
    expectFetchedInOrder(GetParam().attachOrder, GetParam().attach, [&] { attach(); });
}

TEST_P(AttachArguments, NameTheFirstHandlerThatIsMissingWhenDetaching)
{
    expectFetchedInOrder(GetParam().detachOrder, GetParam().detach, [&] { detach(); });
}

TEST_P(AttachArguments, DoNotNeedAHostAddress)
{
    onRequest("GET /iscsi_initiator/iqn", object("iqn"));
    onRequest("POST /host ", object("h1"));
    outcomeOf([&] { (handler.*GetParam().attachToHost)("7", "iqn", ""); });
    const Lines created = platform.lines("POST /host ");
    ASSERT_EQ(created.size(), 1u);
    EXPECT_EQ(created[0].find(" IP="), std::string::npos);
}

TEST_P(AttachArguments, FetchTheHandlersOnEveryCall)
{
    detach();
    const size_t once = partial.asked.size();
    detach();
    EXPECT_EQ(partial.asked.size(), 2 * once);
    EXPECT_EQ(once, 6u);
}

INSTANTIATE_TEST_SUITE_P(Of, AttachArguments, testing::ValuesIn(attachKinds()),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
