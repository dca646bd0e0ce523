// When and how observers are called: under no lock, whatever they do.

#include "Recorder.h"
#include "host/KxRescanLock.h"
#include "unit/handlers/HandlerTest.h"
#include "unit/host/ScannerTest.h"

#include <tessel/HostTransaction.h>

#include <atomic>
#include <stdexcept>
#include <thread>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** Does something whenever it is told of something. */
struct Doing : Observer
{
    explicit Doing(std::function<void()> whatItDoes) : act(std::move(whatItDoes)) {}
    void operationEnded(const OperationEvent&) override { act(); }
    void hostStep(const HostEvent&) override { act(); }
    std::function<void()> act;
};

class Delivery : public ScannerTest
{
protected:
    ~Delivery() override { removeObserver(doing); }

    void observe(std::function<void()> act)
    {
        doing = std::make_shared<Doing>(std::move(act));
        addObserver(doing);
    }

    LunMO getLun() { return handlers::lun(manager).getLun("7"); }

    /** LUN 7 is sdc. */
    void connect()
    {
        seam.addDisk("sdc", WWN);
        seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(WWN), "sdc")});
        seam.prints(LSSCSI_COMMAND, {scsi("1:0:0:1", "sdc"), ""});
    }

    std::shared_ptr<Observer> doing;
};

} // namespace

TEST_F(Delivery, ReachesNobodyWhileTheThreadHasTheRescanLock)
{
    unsigned calls = 0;
    observe([&] {
        ++calls;
        EXPECT_EQ(seam.semaphoreValue, 1) << "the lock is held";
    });
    connect();
    scanner.scanLunAfterAttach(id);
    scanner.scanSnapshotAfterAttach(id);
    EXPECT_GE(calls, 6U);
    calls = 0;
    {
        const HostTransaction transaction(0);
        getLun();
        EXPECT_EQ(calls, 0U);
    }
    EXPECT_GE(calls, 1U);
}

TEST_F(Delivery, HasTheStepsOfAScanWithTheObjectItIsFor)
{
    connect();
    const Recording recording;
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(recording->stepLines(), ElementsAre("scanned ", "found /dev/disk/by-id/../../sdc"));
    EXPECT_EQ(objectsOf(recording->steps.at(1).operation), "lun 7");
    const OperationEvent scan = recording->calls("scanLunAfterAttach").at(0);
    EXPECT_EQ(scan.device, "/dev/disk/by-id/../../sdc");
    EXPECT_GT(scan.lockSeconds, 0) << "nothing takes no time at all";
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(recording->stepLines(), Contains("refused /dev/sdc"));
}

TEST_F(Delivery, TellsOfARemovalAndOfADeviceThatTheKernelKeeps)
{
    connect();
    wwn = WWN;
    seam.disks["sdc"].pages = {page83(WWN)};
    seam.exits("echo 1 > /sys/block/sdc/device/delete", {0});
    const Recording recording;
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(recording->stepLines(), Contains("removed /dev/sdc"));
    EXPECT_TRUE(recording->calls("scanLunBeforeDetach").at(0).isChange);
}

TEST_F(Delivery, DropsWhatAnObserverThrows)
{
    observe([] { throw std::runtime_error("no"); });
    const Recording after;
    EXPECT_EQ(getLun().ID, "7");
    EXPECT_THROW(handlers::lun(manager).getLun(""), OvraAPIException);
    EXPECT_EQ(after->calls("getLun").size(), 2U);
    EXPECT_THAT(platform.journal(), Contains("warn: An observer has thrown an exception: it is dropped."));
}

TEST_F(Delivery, LeavesTheResultOfAnOperationAloneWhoseObserverCallsOthers)
{
    CLunHandler& luns = handlers::lun(manager);
    observe([this] { EXPECT_EQ(getLun().ID, "7"); });
    platform.reply(Reply::noAnswer(28));
    LunQuery all;
    EXPECT_THROW(luns.getLunByHost("3", all), OvraAPIException);
    EXPECT_EQ(platform.lines("record! getLunByHost").at(0), "record! getLunByHost 28");
    EXPECT_EQ(platform.lines("record! getLunByCondition").at(0), "record! getLunByCondition 28");
}

TEST_F(Delivery, EndsWithTheObserver)
{
    unsigned calls = 0;
    observe([&] {
        ++calls;
        removeObserver(doing);
    });
    getLun();
    getLun();
    EXPECT_EQ(calls, 1U);
}

TEST_F(Delivery, IsOnceForAnObserverThatWasAddedTwice)
{
    const Recording recording;
    addObserver(recording.recorder);
    addObserver(nullptr);
    getLun();
    EXPECT_EQ(recording->calls("getLun").size(), 1U);
}

TEST_F(Delivery, GoesOnInSomeThreadsWhileOthersAddAndRemoveObservers)
{
    std::atomic<unsigned> calls{0};
    observe([&] { ++calls; });
    handlers::lun(manager);
    std::atomic<bool> isOver{false};
    std::thread changing([&] {
        while (!isOver) {
            const Recording recording;
        }
    });
    std::vector<std::thread> callers;
    for (int i = 0; i < 3; ++i) {
        callers.emplace_back([] {
            CDeviceManagerImpl own;
            for (int call = 0; call < 200; ++call) {
                own.getHandler(LUN_HANDLER);
            }
        });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }
    isOver = true;
    changing.join();
    EXPECT_GE(calls, 600U);
}
