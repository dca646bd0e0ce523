#include "KernelDisks.h"

#include "localdisk/Finding.h"
#include "unit/observer/Recorder.h"

#include <tessel/Failure.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <future>
#include <set>
#include <thread>

using namespace ovra::tessel;
using testing::HasSubstr;
using testing::IsEmpty;

class FindingADisk : public LocalDiskTest
{
protected:
    FindingADisk() { addSession("1"); }

    unsigned shown = 0;

    /** The names of the disks found, or why there is none. */
    std::string found()
    {
        std::string names;
        const std::string reason = failure([&] {
            for (const auto& disk : findDisks(job(), ways, [this] { ++shown; })) {
                names += disk.name + " ";
            }
        });
        return reason.empty() ? names : reason;
    }
    bool isScanned(const std::string& host = "1")
    {
        return written("/sys/class/scsi_host/host" + host + "/scan") == "- - -";
    }
    /** LUN 7 as the kernel has it while it probes: the block device comes at the first look. */
    void addUnfinished()
    {
        seam.write("/sys/class/scsi_device/1:0:0:1/device/type", "0\n");
        onKernel = [this] {
            std::filesystem::remove_all(seam.root + "/sys/class/scsi_device/1:0:0:1");
            add(KernelDisk());
            onKernel = nullptr;
        };
    }
    /** Twenty healthy disks of another object, on two targets. */
    void addOthers()
    {
        for (unsigned i = 0; i < 20; ++i) {
            KernelDisk other;
            other.name = std::string("sdo") + static_cast<char>('a' + i);
            other.address = "1:0:" + std::to_string(i % 2) + ":" + std::to_string(10 + i);
            other.known = other.now = OTHER_WWN;
            add(other);
        }
    }
    size_t othersAsked()
    {
        std::set<std::string> asked;
        for (const std::string& line : platform.lines("inquiry: sdo")) {
            asked.insert(line);
        }
        return asked.size();
    }
    /** LUN 7 under the names of the disk that had its number before. */
    KernelDisk stale()
    {
        KernelDisk disk;
        disk.known = OTHER_WWN;
        return disk;
    }
};

TEST_F(FindingADisk, ScansNothingWhereEveryWayHasIt)
{
    add(KernelDisk());
    EXPECT_EQ(found(), "sdc ");
    EXPECT_FALSE(isScanned());
}

TEST_F(FindingADisk, ScansTheHostsThatAreOnlineAlone)
{
    addSession("2", "FAILED");
    ways.all = {"1", "2"};
    options.findSeconds = 60;
    onKernel = [&] {
        add(KernelDisk());
        onKernel = nullptr;
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_TRUE(isScanned());
    EXPECT_FALSE(isScanned("2"));
}

TEST_F(FindingADisk, WaitsUntilADiskThatWasFoundHasItsBlockDevice)
{
    options.findSeconds = 60;
    addUnfinished();
    EXPECT_EQ(found(), "sdc ");
    EXPECT_EQ(platform.lines("usleep: ").size(), 1U);
}

TEST_F(FindingADisk, SaysWhatIsInTheWayOfTheSearch)
{
    KernelDisk dead;
    dead.state = "transport-offline";
    dead.now = "";
    add(dead);
    ways.away = {"session2 to iqn.2020-01.test:array is FAILED"};
    EXPECT_THAT(
        found(),
        HasSubstr("no disk of this host answers as it after 0 s: /dev/sdc is transport-offline and does "
                  "not answer, session2 to iqn.2020-01.test:array is FAILED; it is visible to this "
                  "host, and the same call again goes on from there"));
}

TEST_F(FindingADisk, SaysWhyAHostWasNotScanned)
{
    options.findSeconds = 2;
    std::filesystem::remove(seam.root + "/sys/class/scsi_host/host1/scan");
    EXPECT_THAT(found(),
                HasSubstr("no disk of this host answers as it after 2 s: "
                          "/sys/class/scsi_host/host1/scan: No such file or directory; it is visible"));
}

TEST_F(FindingADisk, SaysThatItHasNoNodeHere)
{
    add(KernelDisk());
    seam.disks["sdc"].openError = ENOENT;
    EXPECT_THAT(found(),
                HasSubstr("after 0 s: the kernel has the disk sdc, and there is no /dev/sdc here; it is "
                          "visible"));
}

TEST_F(FindingADisk, ShowsTheObjectAgainWhenSeveralScansFindNothing)
{
    options.findSeconds = 600;
    onKernel = [&] {
        if (shown != 0) {
            add(KernelDisk());
            onKernel = nullptr;
        }
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_EQ(shown, 1U);
}

TEST_F(FindingADisk, AsksTheArrayEverMoreSeldomWhetherItIsShown)
{
    options.findSeconds = 100; // a pause takes a second here
    EXPECT_THAT(found(), HasSubstr("no disk of this host answers as it"));
    EXPECT_EQ(shown, 5U) << "after 4, 8, 16, 32 and 64 scans";
}

TEST_F(FindingADisk, AsksNoDiskThatIsKnownToBeAnotherWhenItsOwnIsThere)
{
    add(KernelDisk());
    addForeign();
    EXPECT_EQ(found(), "sdc ");
    EXPECT_THAT(platform.lines("inquiry: sdd"), IsEmpty());
}

TEST_F(FindingADisk, AsksOneDiskOfEachTargetWhereAScanBringsItsOwn)
{
    addOthers();
    options.findSeconds = 60;
    addUnfinished();
    EXPECT_EQ(found(), "sdc ");
    EXPECT_TRUE(isScanned());
    EXPECT_EQ(othersAsked(), 2U);
}

TEST_F(FindingADisk, AsksAllOnceAScanHasNotBroughtItsOwn)
{
    addOthers();
    KernelDisk old = stale();
    old.address = "1:0:0:99"; // not the first of its target
    add(old);
    options.findSeconds = 60;
    onKernel = [&] {
        if (seam.disks.count("sdc") == 0 && isScanned()) {
            add(KernelDisk());
        }
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_GE(othersAsked(), 20U);
}

TEST_F(FindingADisk, TakesNoDiskThatHasAnsweredAsItAndIsAnotherWhenAllAreAsked)
{
    addSession("2");
    ways = {{"1", "2"}, {"1", "2"}, {}, {}};
    add(KernelDisk());
    seam.disks["sdc"].pages = {page83(WWN), page83(WWN), page83(WWN), page83(OTHER_WWN)};
    options.findSeconds = 2;
    EXPECT_THAT(found(), HasSubstr("no disk of this host answers as it"));
    EXPECT_TRUE(isScanned());
}

TEST_F(FindingADisk, OpensNothingForWritingSinceUdevLooksAtItAnewThen)
{
    add(KernelDisk());
    EXPECT_EQ(found(), "sdc ");
    EXPECT_THAT(platform.lines("open: "), testing::ElementsAre("open: /dev/sdc ro"));
}

TEST_F(FindingADisk, ScansASessionOfAnotherArrayOnlyWhereNothingElseHasIt)
{
    addSession("2");
    ways.all = {"1", "2"};
    ways.others = {"2"};
    options.findSeconds = 60;
    onKernel = [&] {
        if (isScanned("2")) {
            KernelDisk disk;
            disk.address = "2:0:0:1";
            add(disk);
            onKernel = nullptr;
        }
    };
    EXPECT_EQ(found(), "sdc ");
}

TEST_F(FindingADisk, ScansNoSessionOfAnotherArrayWhereItComesByItsOwn)
{
    addSession("2");
    ways.all = {"1", "2"};
    ways.others = {"2"};
    options.findSeconds = 60;
    seam.write("/sys/class/scsi_device/1:0:0:1/device/type", "0\n"); // found, and not ready at once
    onKernel = [&] {
        std::filesystem::remove_all(seam.root + "/sys/class/scsi_device/1:0:0:1");
        add(KernelDisk());
        onKernel = nullptr;
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_TRUE(isScanned());
    EXPECT_FALSE(isScanned("2"));
}

TEST_F(FindingADisk, ScansNoHostWhoseDisksHang)
{
    addSession("2");
    ways.all = ways.online = {"1", "2"};
    KernelDisk hanging;
    hanging.name = "sdh";
    hanging.address = "2:0:0:3";
    hanging.known = OTHER_WWN;
    add(hanging);
    options.findSeconds = 60;
    options.stepSeconds = 1;
    std::promise<void> answer;
    const std::shared_future<void> answered = answer.get_future().share();
    std::atomic<int> asked{0};
    std::atomic<int> ended{0};
    seam.onInquiry = [&](const std::string& disk) {
        if (disk != "sdh") {
            return false;
        }
        ++asked;
        answered.wait();
        ++ended;
        return true;
    };
    onKernel = [&] {
        if (isScanned()) {
            add(KernelDisk());
            onKernel = nullptr;
        }
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_FALSE(isScanned("2"));
    EXPECT_EQ(asked, 1) << "it is not waited for again";
    answer.set_value();
    while (ended != asked) {
        std::this_thread::yield();
    }
}

TEST_F(FindingADisk, TakesASessionForAnotherArraysByItsDisksAlone)
{
    for (const char* host : {"2", "3", "4"}) {
        addSession(host);
    }
    KernelDisk own;
    own.address = "1:0:0:3";
    own.known = own.now = OTHER_WWN;
    add(own);
    KernelDisk foreign;
    foreign.name = "sdd";
    foreign.address = "2:0:0:3";
    foreign.known = foreign.now = "600140512345678900000000000000ab";
    add(foreign);
    KernelDisk zero = foreign; // the target's own, which tells nothing
    zero.name = "sde";
    zero.address = "3:0:0:0";
    add(zero);
    const Ways found = waysOf(job(), HostInitiator::iscsi("iqn.2020-01.test:host"), "");
    EXPECT_THAT(found.online, testing::ElementsAre("1", "3", "4"));
    EXPECT_THAT(found.others, testing::ElementsAre("2"));
    EXPECT_THAT(found.all, testing::SizeIs(4));
}

/** A second initiator of this host, which the array counts to the same host of its own. */
class WaysOfTwoInitiators : public FindingADisk
{
protected:
    WaysOfTwoInitiators()
    {
        addSession("2");
        seam.write("/sys/devices/platform/host2/session2/initiatorname", "iqn.2020-01.test:second\n");
        options.access.tries = 3;
    }

    std::vector<std::string> all()
    {
        platform.replyWith([this](const SentRequest& request) {
            if (request.path == "/lun/7") {
                return Reply::object(lun);
            }
            return refusals-- > 0 ? Reply::error(code) : Reply::object(R"({"ID":"i","PARENTID":"4"})");
        });
        return waysOf(job(), HostInitiator::iscsi("iqn.2020-01.test:host"), "4").all;
    }

    int refusals = 0; ///< that come before the array's answer
    int code = ARRAY_NOT_READY;
};

TEST_F(WaysOfTwoInitiators, AreThoseOfBoth)
{
    EXPECT_THAT(all(), testing::ElementsAre("1", "2"));
}

TEST_F(WaysOfTwoInitiators, AreThoseOfBothWhenTheArrayIsBusyMeanwhile)
{
    refusals = 2;
    EXPECT_THAT(all(), testing::ElementsAre("1", "2"));
}

TEST_F(WaysOfTwoInitiators, AreNotToldWhileTheArrayIsTooBusyToTell)
{
    refusals = 3;
    EXPECT_THROW(all(), OvraAPIExceptionWithErrCode);
}

TEST_F(WaysOfTwoInitiators, AreThoseOfOneWhenTheArrayDoesNotKnowTheOther)
{
    refusals = 1;
    code = 77;
    EXPECT_THAT(all(), testing::ElementsAre("1"));
}

TEST_F(FindingADisk, TakesNoSessionForAnotherArraysWhereAllSeemToBe)
{
    KernelDisk foreign;
    foreign.address = "1:0:0:3";
    foreign.known = foreign.now = "600140512345678900000000000000ab";
    add(foreign);
    const Ways found = waysOf(job(), HostInitiator::iscsi("iqn.2020-01.test:host"), "");
    EXPECT_THAT(found.online, testing::ElementsAre("1"));
    EXPECT_THAT(found.others, IsEmpty());
}

TEST_F(FindingADisk, RenewsADiskUnderTheNamesOfAnother)
{
    add(stale());
    options.findSeconds = 60;
    onKernel = [&] {
        if (seam.disks.empty() && isScanned()) {
            add(KernelDisk());
        }
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_THAT(platform.lines("flush: "), IsEmpty()) << "what waits for the old disk is not for this one";
}

TEST_F(FindingADisk, LeavesTheMapThatAnotherDiskIsAPathOf)
{
    add(stale());
    addForeign();
    KernelMap map;
    map.wwid = std::string("3") + OTHER_WWN;
    map.paths = {"sdc", "sdd"};
    add(map);
    options.findSeconds = 60;
    onKernel = [&] {
        if (seam.disks.count("sdc") == 0 && isScanned()) {
            add(KernelDisk());
        }
    };
    EXPECT_EQ(found(), "sdc ");
    EXPECT_THAT(commands(), IsEmpty());
    EXPECT_NE(ovra::disk::multipathMap("dm-3"), std::nullopt);
}

TEST_F(FindingADisk, NeverRenewsOneThatIsInUse)
{
    add(stale());
    seam.files["/proc/self/mountinfo"] += "40 22 8:0 / /data rw shared:9 - xfs /dev/sdc rw\n";
    EXPECT_THAT(
        found(),
        HasSubstr("/dev/sdc is its disk now, under the names of another one that is in use still: sdc is "
                  "mounted on /data"));
    EXPECT_EQ(written("/sys/block/sdc/device/delete"), "");
}

TEST_F(FindingADisk, NeverRenewsOneThatIsAnotherByThen)
{
    add(stale());
    seam.disks["sdc"].pages = {page83(WWN), page83(OTHER_WWN)};
    EXPECT_THAT(found(), HasSubstr("/dev/sdc is another disk by now"));
    EXPECT_EQ(seam.disks.count("sdc"), 1U);
    EXPECT_EQ(written("/sys/block/sdc/device/delete"), "");
}

TEST_F(FindingADisk, NeverRenewsLunZero)
{
    KernelDisk zero = stale();
    zero.address = "1:0:0:0";
    add(zero);
    EXPECT_THAT(found(), HasSubstr("it has the LUN number 0 and is never removed"));
    EXPECT_EQ(written("/sys/block/sdc/device/delete"), "");
}

TEST_F(FindingADisk, StopsAtADiskOfAnotherArrayWithItsWwn)
{
    platform.replyWith(
        [](const SentRequest&) { return Reply::object(std::string(R"({"ID":"9","WWN":")") + WWN + "\"}"); });
    add(KernelDisk());
    const Recording recording;
    EXPECT_THAT(failure([&] {
                    manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
                    findDisks(DiskJob(*manager, StorageObject::lun("9"), options), ways, [] {});
                }),
                HasSubstr("it is a disk of another array; nothing was changed"));
    EXPECT_THAT(recording->stepLines(), testing::ElementsAre("refused "));
    EXPECT_THAT(recording->steps.at(0).what, HasSubstr("/dev/sdc has its WWN, and is number 7"));
}
