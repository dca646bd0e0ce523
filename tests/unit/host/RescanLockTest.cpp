#include "ScannerTest.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <pthread.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

using testing::ElementsAre;

static_assert(std::is_empty<KxRescanLock>::value, "the lock has no data of its own");

class RescanLock : public ScannerTest
{
protected:
    KxRescanLock lock;
};

TEST_F(RescanLock, IsMadeFreeWhenItIsMissing)
{
    seam.semaphoreId = -1;
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_THAT(platform.journal(),
                ElementsAre("semget: 1235 1 0000 excl", "semget: 0 1 0600", "semget: 1235 1 0600 create",
                            "semctl: 42 SETVAL 1", "info: InitLock Succeed.New semId:[42]",
                            "semctl: 41 IPC_RMID"));
}

TEST_F(RescanLock, ThatIsMadeNeverGetsTheIdZero)
{
    seam.semaphoreId = -1;
    seam.nextSemaphoreId = 0;
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_EQ(seam.semaphoreId, 1);
    EXPECT_EQ(seam.otherSets, 0);
}

TEST_F(RescanLock, IsMadeAsTheLastSetThatTheHostCanHave)
{
    seam.semaphoreId = -1;
    seam.nextSemaphoreId = 0;
    seam.mostSets = 1;
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_EQ(seam.semaphoreId, 1);
    EXPECT_EQ(seam.otherSets, 0);
}

TEST_F(RescanLock, IsLeftAsItIsWhenItExists)
{
    seam.semaphoreValue = 0;
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_THAT(platform.journal(), ElementsAre("semget: 1235 1 0000 excl", "info: Sem exists.SemId:[41]"));
    EXPECT_EQ(seam.semaphoreValue, 0);
}

TEST_F(RescanLock, WithTheIdZeroCountsAsMissing)
{
    seam.semaphoreId = 0;
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_THAT(platform.lines("info:"), ElementsAre("info: InitLock Succeed.New semId:[0]"));
    EXPECT_EQ(platform.lines("warn: The rescan lock has the ID 0").size(), 1u);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(RescanLock, ThatCannotBeMadeIsSaidSo)
{
    seam.semgetFails = true;
    EXPECT_EQ(lock.InitLock(), -1);
    EXPECT_THAT(platform.lines("error:"),
                ElementsAre("error: Create sem failed.", "error: Init Lock failed."));
}

TEST_F(RescanLock, ThatCannotBeSetFreeIsSaidSo)
{
    seam.semaphoreId = -1;
    seam.semctlFails = true;
    EXPECT_EQ(lock.InitLock(), -1);
    EXPECT_THAT(platform.lines("error:"), ElementsAre("error: Init Lock failed."));
    EXPECT_EQ(seam.otherSets, 0);
}

TEST_F(RescanLock, IsTakenWithoutLimitAndGivenBackByTheKernelWhenItsHolderDies)
{
    EXPECT_EQ(lock.GetLock(), 0);
    EXPECT_THAT(platform.journal(), ElementsAre("semget: 1235 1 0600 create", "semop: 41 -1 undo"));
    EXPECT_EQ(seam.semaphoreValue, 0);
}

TEST_F(RescanLock, IsTriedAgainAfterASignal)
{
    seam.semopErrors = {EINTR, EINTR};
    EXPECT_EQ(lock.GetLock(), 0);
    EXPECT_EQ(count("semop: 41 -1 undo"), 3u);
    EXPECT_EQ(seam.semaphoreValue, 0);
}

TEST_F(RescanLock, ThatCannotBeTakenIsSaidSo)
{
    seam.semopErrors = {EIDRM};
    EXPECT_EQ(lock.GetLock(), -1);
    EXPECT_THAT(platform.lines("error:"), ElementsAre("error: Lock sem[41] failed."));
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(RescanLock, WithoutASemaphoreIsNotTaken)
{
    seam.semgetFails = true;
    EXPECT_EQ(lock.GetLock(), -1);
    EXPECT_EQ(lock.ReleaseLock(), -1);
    EXPECT_THAT(platform.lines("error:"),
                ElementsAre("error: Create sem failed.", "error: Lock sem[-1] failed.",
                            "error: Create sem failed.", "error: UnLock sem[-1] failed."));
}

TEST_F(RescanLock, ReleasedTwiceIsOneNotTwo)
{
    EXPECT_EQ(lock.GetLock(), 0);
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(seam.semaphoreValue, 1);
    EXPECT_EQ(count("semctl: 41 SETVAL 1"), 2u);
}

TEST_F(RescanLock, WithTheIdZeroIsReleasedByAThreadThatHasNotTakenIt)
{
    seam.semaphoreId = 0;
    seam.semaphoreValue = 0;
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(RescanLock, ThatCannotBeReleasedIsSaidSo)
{
    seam.semctlFails = true;
    EXPECT_EQ(lock.ReleaseLock(), -1);
    EXPECT_THAT(platform.lines("error:"), ElementsAre("error: UnLock sem[41] failed."));
}

TEST_F(RescanLock, ThatCouldNotBeGivenBackIsGivenBackByWhoeverWantsItNext)
{
    EXPECT_EQ(lock.GetLock(), 0);
    seam.semctlFails = true;
    seam.semopErrors = {EACCES};
    EXPECT_EQ(lock.ReleaseLock(), -1);
    EXPECT_EQ(seam.semaphoreValue, 0);
    seam.semctlFails = false;
    seam.semaphorePid = getpid();
    EXPECT_EQ(lock.getSem(), 41);
    EXPECT_EQ(seam.semaphoreValue, 1) << "else this process would wait for itself";
}

TEST_F(RescanLock, ThatStillCannotBeGivenBackIsGivenBackAsSoonAsItCanBe)
{
    EXPECT_EQ(lock.GetLock(), 0);
    seam.semctlFails = true;
    seam.semopErrors = {EACCES};
    EXPECT_EQ(lock.ReleaseLock(), -1);
    for (const int process : {getpid(), -1}) { // -1: who had it last cannot be told
        seam.semaphorePid = process;
        EXPECT_EQ(lock.getSem(), 41);
        EXPECT_EQ(seam.semaphoreValue, 0);
    }
    seam.semctlFails = false;
    seam.semaphorePid = getpid();
    EXPECT_EQ(lock.getSem(), 41);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(RescanLock, ThatCouldNotBeGivenBackIsNotTakenFromWhoeverHasItByThen)
{
    EXPECT_EQ(lock.GetLock(), 0);
    seam.semctlFails = true;
    seam.semopErrors = {EACCES};
    EXPECT_EQ(lock.ReleaseLock(), -1);
    seam.semctlFails = false;
    seam.semaphorePid = getpid() + 1; // freed from outside, and taken by another process
    EXPECT_EQ(lock.getSem(), 41);
    EXPECT_EQ(seam.semaphoreValue, 0);
}

TEST_F(RescanLock, IsGivenBackByTheIdThatItWasTakenWithWhenItCannotBeFound)
{
    EXPECT_EQ(lock.GetLock(), 0);
    seam.semgetFails = true;
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(seam.semaphoreValue, 1);
    EXPECT_EQ(platform.lines("warn: The rescan lock could only be given back by").size(), 1u);
    EXPECT_EQ(lock.ReleaseLock(), -1) << "it is no longer held";
}

TEST_F(RescanLock, ThatWasFreedFromOutsideIsNotGivenToTwoWhenItIsGivenBackByItsId)
{
    EXPECT_EQ(lock.GetLock(), 0);
    seam.semaphoreValue = 1;
    seam.semgetFails = true;
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(RescanLock, IsGivenBackByAddingToItWhenItCannotBeSet)
{
    EXPECT_EQ(lock.GetLock(), 0);
    seam.semctlFails = true;
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(seam.semaphoreValue, 1);
    EXPECT_EQ(count("semop: 41 1 undo nowait"), 1u);
}

TEST_F(RescanLock, IsAskedForWithoutATimeWhereTheTimedCallIsNotAllowed)
{
    seam.semopErrors = {EPERM};
    EXPECT_EQ(lock.GetLock(), 0);
    EXPECT_EQ(seam.semaphoreValue, 0);
}

TEST_F(RescanLock, ThatIsLongInComingIsSaidOnce)
{
    seam.semopErrors = {EAGAIN, EINTR, EAGAIN, EAGAIN};
    seam.onSemop = [&] { seam.clock += 30; };
    EXPECT_EQ(lock.GetLock(), 0);
    EXPECT_THAT(
        platform.lines("warn: "),
        ElementsAre("warn: Waiting for the rescan lock for more than 60 s: process 4711 holds it. Its "
                    "semaphore [41] is that of user 1000."));
}

class Construction : public ScannerTest
{
protected:
    Construction() { g_scannerInitialised = 0; }
};

TEST_F(Construction, SetsTheLockUpAndFindsTheKorvexProduct)
{
    seam.exits(WHICH, {0});
    const CDiskScannerHandlerImpl made(&manager);
    EXPECT_THAT(platform.journal(),
                ElementsAre("semget: 1235 1 0000 excl", "info: Sem exists.SemId:[41]",
                            std::string("system: ") + WHICH, "info: has installed Korvex"));
    EXPECT_TRUE(g_korvexInstalled);
    EXPECT_EQ(g_scannerInitialised, 1);
}

TEST_F(Construction, SetsUpOnce)
{
    const CDiskScannerHandlerImpl first(&manager);
    platform.reset();
    const CDiskScannerHandlerImpl second(&manager);
    EXPECT_THAT(platform.journal(), ElementsAre());
}

TEST_F(Construction, WithoutKorvexIsSetUpAllTheSame)
{
    const CDiskScannerHandlerImpl made(&manager);
    EXPECT_FALSE(g_korvexInstalled);
    EXPECT_EQ(g_scannerInitialised, 1);
    EXPECT_THAT(platform.lines("info: has"), ElementsAre());
    setenv("PATH", std::string(5000, 'x').c_str(), 1); // cannot be looked through, and need not be
    EXPECT_TRUE(ovra::tessel::mayRemoveDevices()) << "the shell has told";
    setenv("PATH", "/nonexistent", 1);
}

TEST_F(Construction, IsTriedAgainAfterTheLockCouldNotBeMade)
{
    seam.semgetFails = true;
    const CDiskScannerHandlerImpl failed(&manager);
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(g_scannerInitialised, 0);

    seam.semgetFails = false;
    const CDiskScannerHandlerImpl made(&manager);
    EXPECT_THAT(commands(), ElementsAre(WHICH));
    EXPECT_EQ(g_scannerInitialised, 1);
}

/** Asks for the scanner as a thread that is cancelled meanwhile. */
void* getScanner(void* manager)
{
    static_cast<CDeviceManagerImpl*>(manager)->getHandler(DISKSCANNER_HANDLER);
    pthread_testcancel();
    return nullptr;
}

TEST_F(Construction, IsDoneWholeByAThreadThatIsCancelled)
{
    seam.onSystem = [](const std::string&) {
        pthread_cancel(pthread_self());
        pthread_testcancel();
    };
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, nullptr, &getScanner, &manager), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(g_scannerInitialised, 1);
}

/** Two removals in a process where nobody has looked for Korvex yet. @return whether no disk was removed */
bool spareADiskWithoutALook()
{
    RecordingPlatform::get().replyWith([](const SentRequest&) {
        return Reply::object(R"({"ID":"7","WWN":")" + std::string(WWN) + R"("})");
    });
    HostSeam seam;
    seam.semgetFails = true;
    seam.addDisk("sdc", WWN);
    seam.prints("lsscsi", {scsi("2:0:0:1", "sdc")});
    CDeviceManagerImpl manager;
    CDiskScannerHandlerImpl made(&manager);
    std::string id = "7";
    made.scanLunBeforeDetach(id);
    made.scanSnapshotBeforeDetach(id);
    return commands().empty() && count("info: Korvex installed,No need to delete device") == 2;
}

[[noreturn]] void endWithoutALook(const std::string& path)
{
    setenv("PATH", path.c_str(), 1);
    _exit(spareADiskWithoutALook() ? 0 : 1);
}

TEST(ScannerWithoutALock, DoesNotTakeKorvexForAbsent)
{
    char folder[] = "/tmp/korvex-XXXXXX";
    const std::string program = std::string(mkdtemp(folder)) + "/kxRescan";
    std::ofstream(program) << "#!/bin/sh\n";
    chmod(program.c_str(), 0755);
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // runs the program anew
    EXPECT_EXIT(endWithoutALook(folder), testing::ExitedWithCode(0), "");
    std::filesystem::remove_all(folder);
}

TEST_F(Construction, WithoutADeviceManagerSetsNothingUp)
{
    const CDiskScannerHandlerImpl made;
    EXPECT_THAT(platform.journal(), ElementsAre());
    EXPECT_EQ(g_scannerInitialised, 0);
}
