// Device managers as instances: logging and retry values of the process, handlers, keys.

#include "host/DiskScannerHandlerImpl.h"
#include "session/DeviceManagerImpl.h"
#include "session/Retry.h"
#include "session/SessionKeys.h"
#include "support/RecordingPlatform.h"
#include "unit/handlers/Outcome.h"

#include <tessel/Tessel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <set>
#include <thread>

using namespace ovra::tessel;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const char* const ENTER_INITIAL = "info: enter CDeviceManagerImpl::initial()!";
const char* const LEAVE_INITIAL = "info: leave CDeviceManagerImpl::initial()!";
const char* const ENTER_UNINITIAL = "info: enter CDeviceManagerImpl::uninitial()!";
const char* const LEAVE_UNINITIAL = "info: leave CDeviceManagerImpl::uninitial()!";

class Instances : public testing::Test
{
protected:
    Instances()
    {
        platform.reset();
        g_scannerInitialised = 1; // a scanner's first construction would reach for this host's rescan lock
    }
    void TearDown() override { expectWellFormedLogCalls(platform); }

    RecordingPlatform& platform = RecordingPlatform::get();
};

TEST_F(Instances, TheFirstStartsLoggingAndTheLastStopsItBetweenTheirLines)
{
    CDeviceManager* const first = CDeviceManager::getInstance(1, 2);
    EXPECT_THAT(platform.journal(),
                ElementsAre(ENTER_INITIAL, "LogInit /Tessel_API.ini -1 /logs/", LEAVE_INITIAL));
    platform.reset();
    CDeviceManager* const second = CDeviceManager::getInstance(3, 4);
    EXPECT_THAT(platform.journal(), ElementsAre(ENTER_INITIAL, LEAVE_INITIAL));
    platform.reset();
    CDeviceManager::releaseInstance(first);
    EXPECT_THAT(platform.journal(), ElementsAre("removeUser", ENTER_UNINITIAL, LEAVE_UNINITIAL));
    platform.reset();
    CDeviceManager::releaseInstance(second);
    EXPECT_THAT(platform.journal(), ElementsAre("removeUser", ENTER_UNINITIAL, "LogFini", LEAVE_UNINITIAL));
}

TEST_F(Instances, TheFirstSetsTheRetryValuesAndLaterOnesAreIgnoredUntilAllAreReleased)
{
    CDeviceManager* const first = CDeviceManager::getInstance(3, 1000);
    EXPECT_EQ(gRetryTimes, 3u);
    EXPECT_EQ(gRetrySleepTimeMicroSeconds, 1000u);
    CDeviceManager* const second = CDeviceManager::getInstance(9, 9);
    EXPECT_EQ(gRetryTimes, 3u);
    CDeviceManager::releaseInstance(first);
    CDeviceManager* const third = CDeviceManager::getInstance(8, 8);
    EXPECT_EQ(gRetryTimes, 3u);
    EXPECT_EQ(gRetrySleepTimeMicroSeconds, 1000u);
    CDeviceManager::releaseInstance(second);
    CDeviceManager::releaseInstance(third);
    CDeviceManager* const fourth = CDeviceManager::getInstance(7, 6);
    EXPECT_EQ(gRetryTimes, 7u);
    EXPECT_EQ(gRetrySleepTimeMicroSeconds, 6u);
    CDeviceManager::releaseInstance(fourth);
}

TEST_F(Instances, ALogLibraryThatDoesNotStartStopsNobody)
{
    platform.logInitResult = -1;
    CDeviceManager* const manager = CDeviceManager::getInstance(3, 4);
    EXPECT_NE(manager, nullptr);
    EXPECT_EQ(gRetryTimes, 3u);
    platform.logFiniResult = -1;
    CDeviceManager::releaseInstance(manager);
    EXPECT_THAT(platform.lines("LogFini"), SizeIs(1));
}

TEST_F(Instances, ReleasingALoggedInOneSendsNoRequest)
{
    CDeviceManager* const manager = CDeviceManager::getInstance(0, 0);
    EXPECT_TRUE(manager->useConnection("192.0.2.7", 1, "d", "t", "c"));
    CDeviceManager::releaseInstance(manager);
    EXPECT_THAT(platform.requests(), IsEmpty());
    EXPECT_THAT(platform.lines("removeUser"), SizeIs(1));
}

TEST_F(Instances, ReleasingNullIsAccepted)
{
    CDeviceManager::releaseInstance(nullptr);
    CDeviceManagerImpl::destroyInstance(nullptr);
    EXPECT_THAT(platform.journal(), ElementsAre("removeUser"));
}

TEST_F(Instances, CreatedAndReleasedByManyThreadsStartAndStopLoggingInTurn)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int n = 0; n < 50; ++n) {
                CDeviceManager::releaseInstance(CDeviceManager::getInstance(1, 1));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    bool logging = false;
    for (const std::string& line : platform.lines("Log")) {
        EXPECT_NE(logging, line.compare(0, 7, "LogInit") == 0) << "started or stopped twice in a row";
        logging = !logging;
    }
    EXPECT_FALSE(logging);
    EXPECT_THAT(platform.lines(ENTER_INITIAL), SizeIs(200));
    EXPECT_THAT(platform.lines(LEAVE_UNINITIAL), SizeIs(200));
}

// Handlers.

template <class Interface>
bool implements(CHandler* handler)
{
    return dynamic_cast<Interface*>(handler) != nullptr;
}

TEST_F(Instances, HandOutOneHandlerOfEachType)
{
    const std::map<int, bool (*)(CHandler*)> types = {
        {2, implements<CLunHandler>},          {3, implements<CLunGroupHandler>},
        {4, implements<CHostHandler>},         {5, implements<CHostGroupHandler>},
        {6, implements<CMappingViewHandler>},  {7, implements<CIscsiInitiatorHandler>},
        {8, implements<CSnapshotHandler>},     {9, implements<CDiskAttachHandler>},
        {10, implements<CDiskScannerHandler>}, {11, implements<CFCInitiatorHandler>},
        {12, implements<CETHPortHandler>},     {13, implements<CFCPortHandler>},
        {14, implements<CFCoEPortHandler>},
    };
    CDeviceManagerImpl manager;
    CDeviceManagerImpl other;
    std::set<CHandler*> all;
    for (const auto& type : types) {
        CHandler* const handler = manager.getHandler(static_cast<HANDLERTYPE>(type.first));
        ASSERT_NE(handler, nullptr);
        EXPECT_TRUE(type.second(handler)) << type.first;
        EXPECT_EQ(handler, manager.getHandler(static_cast<HANDLERTYPE>(type.first)));
        EXPECT_NE(handler, other.getHandler(static_cast<HANDLERTYPE>(type.first)));
        all.insert(handler);
    }
    EXPECT_THAT(all, SizeIs(13));
    EXPECT_THAT(platform.journal(), IsEmpty());
}

TEST_F(Instances, HandOutNullForTypesThatAreNoneWithoutSayingSo)
{
    CDeviceManagerImpl manager;
    for (const int type : {-1, 0, 1, 15, 16, 255, 65536 + 2}) {
        EXPECT_EQ(manager.getHandler(static_cast<HANDLERTYPE>(type)), nullptr) << type;
    }
    EXPECT_THAT(platform.journal(), IsEmpty());
}

TEST_F(Instances, SendByHandlersBeforeALoginAndFailAtTheRestLayer)
{
    CDeviceManagerImpl manager;
    platform.reply(Reply::noAnswer(10001));
    auto* const luns = static_cast<CLunHandler*>(manager.getHandler(LUN_HANDLER));
    EXPECT_EQ(outcomeOf([&] { luns->getLun("7"); }).kind, Outcome::FAILED);
    EXPECT_THAT(platform.lines("record! getLun 10001"), SizeIs(1));
}

// Session keys.

TEST_F(Instances, NeverShareASessionKey)
{
    std::vector<CDeviceManagerImpl*> managers;
    std::set<unsigned int> keys;
    for (int i = 0; i < 50; ++i) {
        managers.push_back(CDeviceManagerImpl::createInstance(0, 0));
        EXPECT_TRUE(keys.insert(CDeviceManagerImpl::sessionKey(managers.back())).second);
        EXPECT_FALSE(SessionKeys::claim(CDeviceManagerImpl::sessionKey(managers.back()))) << "not claimed";
    }
    for (CDeviceManagerImpl* const manager : managers) {
        const unsigned int key = CDeviceManagerImpl::sessionKey(manager);
        CDeviceManagerImpl::destroyInstance(manager);
        EXPECT_TRUE(SessionKeys::claim(key)) << "not released";
        SessionKeys::release(key);
    }
}

TEST_F(Instances, PassOverAnAddressWhoseKeyIsTaken)
{
    CDeviceManagerImpl* const before = CDeviceManagerImpl::createInstance(0, 0);
    const unsigned int taken = CDeviceManagerImpl::sessionKey(before);
    CDeviceManagerImpl::destroyInstance(before);
    ASSERT_TRUE(SessionKeys::claim(taken));
    CDeviceManagerImpl* const after =
        CDeviceManagerImpl::createInstance(0, 0); // memory likes to be used again
    EXPECT_NE(CDeviceManagerImpl::sessionKey(after), taken);
    CDeviceManagerImpl::destroyInstance(after);
    SessionKeys::release(taken);
}

TEST(SessionKeys, AreClaimedOnceUntilReleasedAnd0Never)
{
    EXPECT_FALSE(SessionKeys::claim(0));
    EXPECT_TRUE(SessionKeys::claim(42));
    EXPECT_FALSE(SessionKeys::claim(42));
    SessionKeys::release(42);
    EXPECT_TRUE(SessionKeys::claim(42));
    SessionKeys::release(42);
    SessionKeys::release(42);
}

TEST(SessionKeys, AreTheLow32BitsOfAnAddress)
{
    const auto* const high = reinterpret_cast<const CDeviceManagerImpl*>(uintptr_t{0x7f12a0004560});
    EXPECT_EQ(CDeviceManagerImpl::sessionKey(high), 0xa0004560u);
    EXPECT_EQ(CDeviceManagerImpl::sessionKey(nullptr), 0u);
}

TEST(SessionKeys, AreClaimedByOneOfManyThreads)
{
    std::atomic<int> winners{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] { winners += SessionKeys::claim(77) ? 1 : 0; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(winners, 1);
    SessionKeys::release(77);
}

} // namespace
