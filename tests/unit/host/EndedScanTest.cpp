// A scan, and a removal, that is ended in each of its steps.

#include "ScannerTest.h"

#include <tessel/Calls.h>
#include <tessel/Failure.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace {

/** A host on which LUN 7 stands under another's names, and temporary devices are waited for. */
class ScannedHost : public ScannerTest
{
public:
    ScannedHost()
    {
        const std::string other = byIdLine("scsi-3" + std::string(OTHER_WWN), "sdb"); // asked ahead of sdc
        const std::string stale = other + byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc");
        seam.addDisk("sdb", OTHER_WWN);
        seam.addDisk("sdc", WWN);
        seam.write("/sys/class/scsi_device/1:0:0:1/device/block/sdc/dev", "8:0\n");
        seam.link("/dev/disk/by-id/scsi-3" + std::string(WWN), "../../sdc");
        seam.prints(BY_ID, {stale, byIdLine("scsi-3" + std::string(WWN), "sdc")});
        seam.prints(LSSCSI_COMMAND, {scsi("1:0:0:1", "sdc"), ""});
        seam.exits(TMP_BLOCK, {0, 0, 1});
        seam.onSystem = [this](const std::string&) { step(); };
        seam.onPopen = [this](const std::string&) { step(); };
        seam.onInquiry = [this](const std::string&) {
            step();
            return false;
        };
        seam.onSemop = [this] { step(); };
        seam.onUsleep = [this] { step(); };
    }
    ~ScannedHost() override
    {
        seam.waitForThreads();
        seam.onSystem = nullptr;
        seam.onPopen = nullptr;
        seam.onInquiry = nullptr;
        seam.onSemop = nullptr;
        seam.onUsleep = nullptr;
    }
    void TestBody() override {}

    std::string scanLun() { return scanner.scanLunAfterAttach(id); }
    std::string scanSnapshot() { return scanner.scanSnapshotAfterAttach(id); }
    std::string remove()
    {
        scanner.scanLunBeforeDetach(id);
        return "";
    }

    /** What was run since the call was ended. */
    std::vector<std::string> runSinceTheEnd() const
    {
        std::vector<std::string> run;
        const std::vector<std::string> journal = platform.journal();
        for (size_t i = m_ended; i < journal.size(); ++i) {
            for (const char* const begin : {"system: ", "popen: ", "open: ", "semop: 41 -1", "sleep"}) {
                if (journal[i].rfind(begin, 0) == 0) {
                    run.push_back(journal[i]);
                }
            }
        }
        return run;
    }

    using ScannerTest::platform;
    using ScannerTest::seam;
    unsigned endAt = 0;
    std::atomic<unsigned> steps{0};
    const Cancellation cancellation;

private:
    void step()
    {
        if (++steps == endAt) {
            cancellation.cancel();
            m_ended = platform.journal().size();
        }
    }

    size_t m_ended = 0;
};

struct ScanCase
{
    const char* name;
    std::string (ScannedHost::*call)();
    bool isFinding;
    unsigned atLeast;
};

class AScan : public testing::TestWithParam<ScanCase>
{
};

} // namespace

TEST_P(AScan, EndsInEachOfItsSteps)
{
    const ScanCase& tried = GetParam();
    const std::string found = tried.isFinding ? "/dev/disk/by-id/../../sdc" : "";
    unsigned steps = 0;
    {
        ScannedHost host;
        const CallLimit limit(host.cancellation);
        EXPECT_EQ((host.*tried.call)(), found);
        EXPECT_FALSE(lastFailure()) << lastFailure().message;
        steps = host.steps;
    }
    EXPECT_GE(steps, tried.atLeast);
    for (unsigned step = 1; step <= steps; ++step) {
        SCOPED_TRACE(step);
        ScannedHost host;
        host.endAt = step;
        {
            const CallLimit limit(host.cancellation);
            EXPECT_TRUE((host.*tried.call)().empty() || step == steps);
        }
        EXPECT_TRUE(lastFailure().kind == FailureKind::CANCELLED || step == steps) << lastFailure().message;
        EXPECT_EQ(lastScanSignal(), 0);
        EXPECT_THAT(host.runSinceTheEnd(), testing::IsEmpty());
        EXPECT_EQ(host.seam.semaphoreValue, 1) << "the lock is held";
        EXPECT_THAT(host.platform.journal().back(), testing::StartsWith("record"));
        host.seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(WWN), "sdc")});
        EXPECT_EQ((host.*tried.call)(), found) << "again, without a limit";
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, AScan,
                         testing::Values(ScanCase{"Lun", &ScannedHost::scanLun, true, 15},
                                         ScanCase{"Snapshot", &ScannedHost::scanSnapshot, true, 15},
                                         ScanCase{"Removal", &ScannedHost::remove, false, 5}),
                         [](const auto& tried) { return std::string(tried.param.name); });

TEST(AScanWithALimit, WaitsForTemporaryDevicesNoLongerThanItMay)
{
    ScannedHost host;
    host.seam.exits(TMP_BLOCK, {0});
    host.seam.onUsleep = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); };
    const CallLimit limit(std::chrono::milliseconds(30));
    EXPECT_EQ(host.scanLun(), "");
    EXPECT_EQ(lastFailure().kind, FailureKind::TIMED_OUT);
    EXPECT_LT(host.platform.lines("poll: ").size(), 1500U);
    EXPECT_EQ(host.seam.semaphoreValue, 1);
}
