// A call is ended in each of its steps on the host: nothing more is run, and the same call again finishes.

#include "KernelDisks.h"

#include <tessel/Calls.h>
#include <tessel/Failure.h>
#include <tessel/Tidy.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

const HostInitiator INITIATOR = HostInitiator::iscsi("iqn.2020-01.test:host");

/** LUN 7 is shown to host 3; and, each time that this host is asked for or given something, a step. */
class Host : public LocalDiskTest
{
public:
    Host()
    {
        addSession("1");
        options.lockSeconds = 60;
        options.findSeconds = 60;
        options.mapSeconds = 3; // a pause takes a second
        platform.replyWith([this](const SentRequest& request) { return answerOf(request.path); });
        manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
        m_folder = std::filesystem::temp_directory_path() / ("ended-" + std::to_string(getpid()));
        std::filesystem::create_directories(m_folder);
        std::ofstream(m_folder / "multipath") << "#!/bin/sh\n";
        std::filesystem::permissions(m_folder / "multipath", std::filesystem::perms::owner_all);
        setenv("PATH", m_folder.c_str(), 1);
        seam.exits("timeout 5 udevadm wait --initialized=true --timeout=5 /dev/sdc >/dev/null 2>&1", {0});
        seam.exits("answer=$(timeout 5 multipath -u /dev/sdc 2>/dev/null); case $?$answer in 0*=?1?) exit "
                   "0;; esac; exit 1",
                   {0});
        seam.exits("udevadm control --ping --timeout=5 >/dev/null 2>&1 && udevadm settle --timeout=5 "
                   ">/dev/null 2>&1",
                   {0});
        seam.exits("which kxRescan >/dev/null 2>&1", {1});
        seam.onSystem = [this](const std::string& command) {
            if (command.find("multipath -f ") != std::string::npos) {
                std::filesystem::remove_all(seam.root + "/sys/block/dm-3");
                std::filesystem::remove(seam.root + "/sys/block/sdc/holders/dm-3");
                seam.disks.erase("dm-3");
            }
            step();
        };
        seam.onInquiry = [this](const std::string&) {
            step();
            return false;
        };
        seam.onSemop = [this] { step(); };
        onKernel = [this] {
            grow();
            step();
        };
    }
    ~Host() override
    {
        seam.waitForThreads();
        seam.onSystem = nullptr;
        seam.onInquiry = nullptr;
        seam.onSemop = nullptr;
        std::filesystem::remove_all(m_folder);
    }
    void TestBody() override {}

    using LocalDiskTest::manager;
    using LocalDiskTest::platform;
    using LocalDiskTest::seam;

    void endAt(unsigned wanted) { m_end = wanted; }
    unsigned steps() const { return m_steps; }
    const Cancellation& cancellation() const { return m_cancellation; }
    bool isFree() const { return seam.semaphoreValue == 1; }
    bool hasDisk() const { return seam.disks.count("sdc") != 0; }
    /** What was run and taken since the call was ended. */
    std::vector<std::string> runSinceTheEnd() const
    {
        std::vector<std::string> run;
        const std::vector<std::string> journal = platform.journal();
        for (size_t i = m_ended; i < journal.size(); ++i) {
            for (const char* const begin : {"system: ", "popen: ", "semop: 41 -1", "flush: "}) {
                if (journal[i].rfind(begin, 0) == 0) {
                    run.push_back(journal[i]);
                }
            }
        }
        return run;
    }

    void addStale()
    {
        KernelDisk stale;
        stale.known = OTHER_WWN;
        add(stale);
        addMap(OTHER_WWN);
    }
    void addOurs()
    {
        add(KernelDisk());
        addMap(WWN);
    }
    void addDead()
    {
        addOurs();
        seam.disks["sdc"].scsiStatus = 2;
        seam.disks["sdc"].sense = {0x70, 0, 5, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0x25, 0, 0, 0, 0, 0};
        m_isShown = false;
    }
    std::string attached()
    {
        return failure(
            [&] { LocalDisk::attach(*manager, StorageObject::lun("7"), INITIATOR, options).keep(); });
    }
    std::string released()
    {
        return failure([&] { LocalDisk::release(*manager, StorageObject::lun("7"), INITIATOR, options); });
    }
    std::string tidied()
    {
        return failure([&] {
            DiskTidyOptions tidying;
            tidying.isDryRun = false;
            tidying.steps = options;
            tidyDisks(*manager, "3", tidying);
        });
    }

private:
    void step()
    {
        if (++m_steps == m_end) {
            m_cancellation.cancel();
            m_ended = platform.journal().size();
        }
    }

    /** A scan brings the disk, and multipathd its map a moment later. */
    void grow()
    {
        const bool isScanned = written("/sys/class/scsi_host/host1/scan") == "- - -";
        if (hasDisk() && seam.disks.count("dm-3") == 0 && m_isGrown) {
            addMap(WWN);
        } else if (!hasDisk() && isScanned) {
            add(KernelDisk());
            m_isGrown = true;
        }
    }
    void addMap(const std::string& wwn)
    {
        KernelMap map;
        map.wwid = "3" + wwn;
        map.paths = {"sdc"};
        add(map);
    }

    Reply answerOf(const std::string& path) const
    {
        if (path.rfind("/iscsi_initiator/", 0) == 0) {
            return Reply::object(R"({"ID":"iqn.2020-01.test:host","PARENTID":"3"})");
        }
        if (path == "/lun/7") {
            return Reply::object(lun);
        }
        if (path.rfind("/lun/associate", 0) == 0 && m_isShown) {
            return Reply::list("[" + lun + "]");
        }
        return path.find("associate") != std::string::npos ? Reply::ok() : Reply::error(1077936859, "none");
    }

    std::filesystem::path m_folder;
    const Cancellation m_cancellation;
    std::atomic<unsigned> m_steps{0};
    unsigned m_end = 0;
    size_t m_ended = 0;
    bool m_isShown = true;
    bool m_isGrown = false;
};

struct CallCase
{
    const char* name;
    void (Host::*prepare)();
    std::string (Host::*call)();
    unsigned atLeast; ///< steps that it has
};

class ACallOnAHost : public testing::TestWithParam<CallCase>
{
};

} // namespace

TEST_P(ACallOnAHost, EndsInEachOfItsStepsAndIsFinishedByTheNext)
{
    const CallCase& tried = GetParam();
    const auto made = [&] {
        auto host = std::make_unique<Host>();
        (host.get()->*tried.prepare)();
        return host;
    };
    unsigned steps = 0;
    {
        const auto host = made();
        const CallLimit limit(host->cancellation());
        EXPECT_EQ((host.get()->*tried.call)(), "");
        steps = host->steps();
    }
    EXPECT_GE(steps, tried.atLeast);
    unsigned ended = 0;
    for (unsigned step = 1; step <= steps; ++step) {
        SCOPED_TRACE(step);
        const auto host = made();
        host->endAt(step);
        std::string said;
        {
            const CallLimit limit(host->cancellation());
            said = (host.get()->*tried.call)();
        }
        ended += said.empty() ? 0 : 1;
        if (!said.empty()) {
            EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED) << said;
            EXPECT_TRUE(lastFailure().canTryAgain) << said;
        }
        EXPECT_THAT(host->runSinceTheEnd(), testing::IsEmpty());
        EXPECT_TRUE(host->isFree());
        EXPECT_EQ((host.get()->*tried.call)(), "") << "again, without a limit";
        EXPECT_TRUE(host->isFree());
    }
    EXPECT_GE(ended + 1, steps) << "but in the last one";
}

INSTANTIATE_TEST_SUITE_P(Kinds, ACallOnAHost,
                         testing::Values(CallCase{"Attach", &Host::addStale, &Host::attached, 12},
                                         CallCase{"Release", &Host::addOurs, &Host::released, 5},
                                         CallCase{"Tidy", &Host::addDead, &Host::tidied, 5}),
                         [](const auto& tried) { return std::string(tried.param.name); });

TEST(ALimitOfADeviceManager, HoldsForALocalDiskAsAWhole)
{
    Host host;
    host.addStale();
    const Cancellation cancellation;
    cancellation.cancel();
    setCallLimit(*host.manager, std::chrono::milliseconds(0), cancellation);
    EXPECT_NE(host.attached(), "");
    EXPECT_EQ(lastFailure().kind, FailureKind::CANCELLED);
    EXPECT_TRUE(host.platform.lines("system: ").empty());
    EXPECT_TRUE(host.hasDisk());
    cancellation.reset();
    EXPECT_EQ(host.attached(), "");
    setCallLimit(*host.manager, std::chrono::milliseconds(1));
    host.seam.onInquiry = [](const std::string&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        return false;
    };
    EXPECT_NE(host.released(), "");
    EXPECT_EQ(lastFailure().kind, FailureKind::TIMED_OUT);
    EXPECT_TRUE(host.hasDisk());
}
