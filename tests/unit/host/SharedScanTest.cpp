#include "ScanSnapshotTest.h"

#include "session/CallsAtWork.h"

#include <tessel/Calls.h>
#include <tessel/Exception.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

class BrokenRescan : public ScanSnapshot
{
protected:
    BrokenRescan()
    {
        g_korvexInstalled = true;
        seam.onSystem = [](const std::string&) { throw OvraAPIException("on purpose"); };
    }
};

TEST_F(BrokenRescan, EndsTheScanStateFreesTheLockAndLetsWaitersGo)
{
    EXPECT_THROW(scanner.scanSnapshotAfterAttach(id), OvraAPIException);
    EXPECT_EQ(GetScanState(), KX_RESCAN_ENDED);
    EXPECT_EQ(seam.semaphoreValue, 1);
    EXPECT_TRUE(g_scanLunMutex.try_lock());
    g_scanLunMutex.unlock();
}

TEST_F(BrokenRescan, WakesAThreadThatWaits)
{
    std::promise<void> waiting;
    seam.onSystem = [&](const std::string&) {
        waiting.get_future().wait();
        throw OvraAPIException("on purpose");
    };
    std::thread failing([&] { EXPECT_THROW(scanner.scanSnapshotAfterAttach(id), OvraAPIException); });
    while (GetScanState() != KX_RESCAN_RUNNING) {
        std::this_thread::yield();
    }
    std::thread waiter([&] {
        waiting.set_value();
        waitForScanEnd();
    });
    failing.join();
    waiter.join(); // does not end unless it is woken
    EXPECT_EQ(GetScanState(), KX_RESCAN_ENDED);
}

/** Threads that scan for the same snapshot, each with a device manager of its own. */
class SharedScan : public ScanSnapshot
{
protected:
    struct Scan
    {
        Scan() : scanner(&manager) {}
        void start()
        {
            thread = std::thread([this] {
                std::string snapshot = "7";
                path = scanner.scanSnapshotAfterAttach(snapshot);
            });
        }
        CDeviceManagerImpl manager;
        CDiskScannerHandlerImpl scanner;
        std::thread thread;
        std::string path;
    };

    SharedScan() { g_korvexInstalled = true; }

    void waitForLines(const std::string& line, size_t lines)
    {
        while (count(line) < lines) {
            std::this_thread::yield();
        }
    }
};

TEST_F(SharedScan, ScansThatArriveMeanwhileTakeItsFindWithoutARescan)
{
    connect();
    std::vector<Scan> waiters(4);
    Scan first;
    seam.onSystem = [&](const std::string& command) {
        if (command == KORVEX) {
            for (Scan& waiter : waiters) {
                waiter.start();
            }
            waitForLines("info: wait the scaning ...", waiters.size());
        }
    };
    first.start();
    first.thread.join();
    for (Scan& waiter : waiters) {
        waiter.thread.join();
        EXPECT_EQ(waiter.path, path);
    }
    EXPECT_EQ(first.path, path);
    EXPECT_EQ(count(std::string("system: ") + KORVEX), 1u);
    EXPECT_EQ(count("semop: 41 -1 undo"), 1u);
}

TEST_F(SharedScan, WaitersSearchOnlyWhenTheScanningThreadHasWrittenItsLastLine)
{
    connect();
    Scan first, waiter;
    seam.onSystem = [&](const std::string& command) {
        if (command == KORVEX) {
            waiter.start();
            waitForLines("info: wait the scaning ...", 1);
        }
    };
    first.start();
    first.thread.join();
    waiter.thread.join();
    const auto journal = platform.journal();
    const auto woken = std::find(journal.begin(), journal.end(), "info: running the kxRescan end");
    const auto last = std::find(journal.begin(), journal.end(), "record scanSnapshotAfterAttach 0");
    ASSERT_NE(woken, journal.end());
    EXPECT_LT(last - journal.begin(), woken - journal.begin());
}

TEST_F(SharedScan, WaitersThatTheFindDoesNotHelpScanOneAfterTheOther)
{
    std::vector<Scan> scans(4);
    std::atomic<int> running{0}, most{0};
    seam.onSystem = [&](const std::string& command) {
        if (command == KORVEX) {
            most = std::max(most.load(), ++running);
            std::this_thread::yield();
            --running;
        }
    };
    for (Scan& scan : scans) {
        scan.start();
    }
    for (Scan& scan : scans) {
        scan.thread.join();
        EXPECT_EQ(scan.path, "");
    }
    EXPECT_EQ(count(std::string("system: ") + KORVEX), scans.size());
    EXPECT_EQ(most, 1);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(SharedScan, IsWaitedForByACallNoLongerThanItMay)
{
    g_scanState = KX_RESCAN_RUNNING; // nobody ends it
    const ovra::tessel::CallLimit limit(std::chrono::milliseconds(30));
    try {
        waitForScanEnd();
        ADD_FAILURE();
    } catch (const ovra::tessel::CallEnded& ended) {
        EXPECT_EQ(ended.why, ovra::tessel::FailureKind::TIMED_OUT);
    }
    EXPECT_TRUE(g_scanLunMutex.try_lock());
    g_scanLunMutex.unlock();
}

TEST_F(SharedScan, GoesOnForACallWithALimitWhenItHasEnded)
{
    RunningScan scan;
    std::promise<void> waiting;
    std::thread waiter([&] {
        const ovra::tessel::CallLimit limit(std::chrono::minutes(10));
        waiting.set_value();
        waitForScanEnd();
    });
    waiting.get_future().wait();
    scan.end();
    waiter.join();
}
