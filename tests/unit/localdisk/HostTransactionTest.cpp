#include "KernelDisks.h"

#include "host/KxRescanLock.h"

#include <tessel/Failure.h>
#include <tessel/HostTransaction.h>
#include <tessel/LocalDisk.h>

#include <memory>
#include <thread>

using namespace ovra::tessel;
using testing::HasSubstr;

class TransactionOnAHost : public LocalDiskTest
{
protected:
    std::string begun(unsigned seconds = 0)
    {
        return failure([&] { const HostTransaction transaction(seconds); });
    }
};

TEST_F(TransactionOnAHost, HoldsTheRescanLockToItsEnd)
{
    {
        const HostTransaction transaction(0);
        EXPECT_EQ(seam.semaphoreValue, 0);
    }
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(TransactionOnAHost, GivesTheLockBackByItsIdWhereItCannotBeFoundAnyMore)
{
    {
        const HostTransaction transaction(0);
        seam.semgetFails = true;
    }
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(TransactionOnAHost, IsNotBegunTwiceInAThread)
{
    const HostTransaction transaction(0);
    EXPECT_THAT(begun(), HasSubstr("this thread has it already, in another HostTransaction"));
    EXPECT_EQ(seam.semaphoreValue, 0) << "the first one has it still";
}

TEST_F(TransactionOnAHost, MakesAScanOfItsThreadFailAtOnce)
{
    const HostTransaction transaction(0);
    KxRescanLock lock;
    const HeldRescanLock held(lock);
    EXPECT_FALSE(held);
    EXPECT_EQ(platform.lines("semop: ").size(), 1U);
}

TEST_F(TransactionOnAHost, CanBeBegunAgain)
{
    EXPECT_EQ(begun(), "");
    EXPECT_EQ(begun(), "");
}

TEST_F(TransactionOnAHost, SaysWhoHoldsTheLockWhenTheTimeIsUp)
{
    seam.semopErrors = {EAGAIN};
    EXPECT_THAT(begun(), HasSubstr("no rescan lock: process 4711 has held it for more than 0 s"));
    seam.semaphorePid = 0; // it is in another namespace of processes
    seam.semopErrors = {EAGAIN};
    EXPECT_THAT(begun(), HasSubstr("no rescan lock: another process has held it for more than 0 s"));
}

TEST_F(TransactionOnAHost, LeavesItsFailureToBeAskedFor)
{
    seam.semopErrors = {EAGAIN};
    const std::string thrown = begun();
    EXPECT_EQ(lastFailure().kind, FailureKind::HOST);
    EXPECT_TRUE(lastFailure().canTryAgain);
    EXPECT_EQ(lastFailure().operation, "HostTransaction");
    EXPECT_THAT(thrown, HasSubstr(lastFailure().message));
    EXPECT_EQ(begun(), "");
    EXPECT_FALSE(lastFailure());
}

TEST_F(TransactionOnAHost, AndALocalDiskTellTheirFailuresApart)
{
    const HostInitiator host = HostInitiator::iscsi("iqn.2024-05.org.example:1");
    failure([&] { LocalDisk::find(*manager, StorageObject{MO_HOST, "1"}, host); });
    EXPECT_EQ(lastFailure().kind, FailureKind::ARGUMENT);
    platform.reply(Reply::ok());
    failure([&] { LocalDisk::find(*manager, StorageObject::lun("7"), host); });
    EXPECT_EQ(lastFailure().kind, FailureKind::HOST);
    EXPECT_EQ(lastFailure().operation, "LocalDisk");
    EXPECT_EQ(lastFailure().message, "LUN 7: the array has no such object! LocalDisk");
}

TEST_F(TransactionOnAHost, WaitsOnThroughSignalsAndASetThatIsMadeAnew)
{
    seam.semopErrors = {EINTR, EIDRM, EAGAIN};
    EXPECT_EQ(begun(60), "");
}

TEST_F(TransactionOnAHost, IsRefusedWithTheReasonOfTheKernel)
{
    seam.semopErrors = {EACCES};
    EXPECT_THAT(begun(60), HasSubstr("no rescan lock: Permission denied"));
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(TransactionOnAHost, IsRefusedWithoutASemaphore)
{
    seam.semgetFails = true;
    EXPECT_THAT(begun(), HasSubstr("no rescan lock: its semaphore cannot be"));
}

TEST_F(TransactionOnAHost, GivesTheLockToAnotherThread)
{
    auto transaction = std::make_unique<HostTransaction>(0);
    std::string said = "waits";
    std::thread other([&] { said = begun(60); });
    transaction.reset();
    other.join();
    EXPECT_EQ(said, "");
    EXPECT_EQ(seam.semaphoreValue, 1);
}
