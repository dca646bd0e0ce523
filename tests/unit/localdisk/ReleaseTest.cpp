#include "KernelDisks.h"

#include "localdisk/Release.h"
#include "localdisk/Whole.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

using namespace ovra::tessel;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/** A host whose initiator the array counts to no host, so that there is nothing to hide. */
class ReleaseOfADisk : public LocalDiskTest
{
protected:
    ReleaseOfADisk()
    {
        addSession("1");
        options.lockSeconds = 0;
        platform.replyWith([this](const SentRequest& request) {
            if (request.path == "/lun/7") {
                return Reply::object(lun);
            }
            return request.path.rfind("/iscsi_initiator", 0) == 0
                       ? Reply::object(R"({"ID":"iqn.2020-01.test:host"})")
                       : Reply::ok();
        });
    }

    std::string released(bool evenInUse = false)
    {
        return failure([&] {
            whole([&] { releaseDisk(job(), HostInitiator::iscsi("iqn.2020-01.test:host"), evenInUse); });
        });
    }
    bool isThere(const std::string& name = "sdc") { return seam.disks.count(name) != 0; }
    void mountDisk()
    {
        seam.files["/proc/self/mountinfo"] += "40 22 8:0 / /data rw shared:9 - xfs /dev/sdc rw\n";
    }
    /** Lines of the journal that begin with one of these, in order. */
    std::vector<std::string> order(const std::vector<std::string>& beginnings)
    {
        std::vector<std::string> lines = platform.journal();
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [&](const std::string& line) {
                                       return std::none_of(beginnings.begin(), beginnings.end(),
                                                           [&](const std::string& begin) {
                                                               return line.rfind(begin, 0) == 0;
                                                           });
                                   }),
                    lines.end());
        return lines;
    }
    KernelDisk dead()
    {
        KernelDisk disk;
        disk.now = "";
        disk.state = "transport-offline";
        return disk;
    }
};

TEST_F(ReleaseOfADisk, RemovesIt)
{
    add(KernelDisk());
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
}

TEST_F(ReleaseOfADisk, WritesBackBeforeItTakesTheLockAndOnceMoreWithIt)
{
    add(KernelDisk());
    EXPECT_EQ(released(), "");
    EXPECT_THAT(order({"flush: ", "semop: 41 -1"}),
                ElementsAre("flush: sdc", StartsWith("semop: 41 -1"), "flush: sdc"));
}

TEST_F(ReleaseOfADisk, RefusesOneThatIsMounted)
{
    add(KernelDisk());
    mountDisk();
    EXPECT_THAT(released(), HasSubstr("it is in use: sdc is mounted on /data; nothing was changed"));
    EXPECT_TRUE(isThere());
    EXPECT_THAT(order({"semop"}), IsEmpty()) << "nobody waits for what is refused";
}

class ReleaseOfADiskWhoseUsesAreNotKnown : public ReleaseOfADisk,
                                           public testing::WithParamInterface<const char*>
{
};

TEST_P(ReleaseOfADiskWhoseUsesAreNotKnown, ChangesNothing)
{
    add(KernelDisk());
    seam.write("/proc/77/comm", "dd\n");
    seam.write("/proc/77/mountinfo", "22 1 254:0 / / rw - ext4 /dev/vda rw\n");
    seam.link("/proc/77/fd/3", "/dev/null");
    seam.write("/sys/fs/btrfs/system/devices/sdq", "");
    seam.outOfReach = GetParam();
    EXPECT_THAT(released(), HasSubstr(std::string(GetParam()) + " cannot be read: Too many open files"));
    EXPECT_TRUE(isThere());
    EXPECT_THAT(order({"semop", "POST", "PUT", "DELETE"}), IsEmpty());
    seam.outOfReach.clear();
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
}

INSTANTIATE_TEST_SUITE_P(OutOfReach, ReleaseOfADiskWhoseUsesAreNotKnown,
                         testing::Values("/sys/block/sdc", "/sys/block/sdc/dev", "/sys/block/sdc/holders",
                                         "/sys/fs/btrfs/", "/sys/fs/btrfs/system/devices", "/proc/",
                                         "/proc/77/fd", "/proc/77/comm", "/proc/77/mountinfo",
                                         "/sys/class/block/sdc/dev", "/proc/self/mountinfo", "/proc/swaps"));

class ReleaseOfADiskOfWhichALookFails : public ReleaseOfADisk, public testing::WithParamInterface<const char*>
{
};

TEST_P(ReleaseOfADiskOfWhichALookFails, ChangesNothing)
{
    add(KernelDisk());
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    seam.write("/sys/block/sdc/sdc1/partition", "1\n");
    seam.write("/proc/77/comm", "dd\n");
    seam.link("/proc/77/fd/3", "/dev/null");
    seam.broken = GetParam();
    EXPECT_THAT(released(), HasSubstr(std::string(GetParam()) + " cannot be read: Input/output error"));
    EXPECT_TRUE(isThere());
    EXPECT_THAT(order({"semop", "POST", "PUT", "DELETE"}), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtThat, ReleaseOfADiskOfWhichALookFails,
                         testing::Values("/sys/block/sdc/device", "/sys/class/iscsi_session/session1",
                                         "/sys/block/sdc/sdc1/partition", "/sys/block/dm-3/slaves/sdc",
                                         "/proc/77/fd/3"));

using Want = std::pair<int SeamDisk::*, int>; ///< the call that fails, and its errno

class ReleaseOfADiskThatCannotBeAsked : public ReleaseOfADisk, public testing::WithParamInterface<Want>
{
};

TEST_P(ReleaseOfADiskThatCannotBeAsked, IsNotTakenForOneOfADeadDisk)
{
    add(KernelDisk());
    int& error = seam.disks["sdc"].*GetParam().first;
    error = GetParam().second;
    EXPECT_THAT(released(), HasSubstr("the disks of this host cannot be told: /dev/sdc cannot be read: " +
                                      std::generic_category().message(GetParam().second) + "; call again"));
    EXPECT_TRUE(isThere());
    EXPECT_THAT(order({"semop", "POST", "PUT", "DELETE"}), IsEmpty());
    error = 0;
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
    EXPECT_THAT(order({"flush: "}), testing::SizeIs(2));
}

INSTANTIATE_TEST_SUITE_P(
    ForWant, ReleaseOfADiskThatCannotBeAsked,
    testing::Values(Want{&SeamDisk::openError, EMFILE}, Want{&SeamDisk::openError, ENFILE},
                    Want{&SeamDisk::openError, ENOMEM}, Want{&SeamDisk::openError, EACCES},
                    Want{&SeamDisk::openError, EPERM}, Want{&SeamDisk::inquiryError, ENOMEM}),
    [](const auto& test) { return "Test" + std::to_string(test.index); });

TEST_F(ReleaseOfADisk, RemovesOneThatCannotBeOpenedForItsOwnReasonAsADeadOne)
{
    add(KernelDisk());
    seam.disks["sdc"].openError = ENXIO;
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
}

TEST_F(ReleaseOfADisk, TakesOneThatHasNoNodeHereForNoDeadOne)
{
    add(KernelDisk());
    seam.disks["sdc"].openError = ENOENT;
    EXPECT_THAT(released(),
                HasSubstr("the kernel has the disk sdc, and there is no /dev/sdc here; let the host's "
                          "/dev be seen here, and call again"));
    EXPECT_TRUE(isThere());
    EXPECT_THAT(order({"semop", "POST", "PUT", "DELETE"}), IsEmpty());
    EXPECT_EQ(released(true), "") << "unless it is forced";
    EXPECT_FALSE(isThere());
}

TEST_F(ReleaseOfADisk, WritesBackToOneWhoseNodeComesJustNow)
{
    add(KernelDisk());
    seam.disks["sdc"].openError = ENOENT;
    onKernel = [&] {
        seam.disks["sdc"].openError = 0;
        onKernel = nullptr;
    };
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
    EXPECT_THAT(order({"flush: "}), testing::Not(IsEmpty()));
}

TEST_F(ReleaseOfADisk, TakesOneThatGoesWithItsNodeForADeadOne)
{
    add(KernelDisk());
    seam.disks["sdc"].openError = ENOENT;
    onKernel = [&] { seam.write("/sys/devices/1:0:0:1/state", "cancel\n"); };
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
}

TEST_F(ReleaseOfADisk, WritesBackToOneThatAnswersOnlyWhenItIsToGo)
{
    add(KernelDisk());
    int asked = 0;
    seam.onInquiry = [&](const std::string&) {
        return ++asked <= 3;
    }; // three looks: before, with, and for the end
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
    EXPECT_THAT(order({"flush: "}), ElementsAre("flush: sdc"));
}

TEST_F(ReleaseOfADisk, RefusesADeadOneThatIsMounted)
{
    add(dead());
    mountDisk();
    EXPECT_THAT(released(), HasSubstr("it is in use: sdc is mounted on /data; nothing was changed"));
    EXPECT_TRUE(isThere());
}

TEST_F(ReleaseOfADisk, RemovesADeadOneThatIsMountedWhenForced)
{
    add(dead());
    mountDisk();
    EXPECT_EQ(released(true), "");
    EXPECT_FALSE(isThere());
    EXPECT_THAT(platform.lines("warn: "),
                testing::Contains("warn: /dev/sdc of LUN 7 does not answer: it is removed as it is."));
}

TEST_F(ReleaseOfADisk, NeverWritesBackToADeadOne)
{
    add(dead());
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
    EXPECT_THAT(order({"flush", "open: sdc"}), IsEmpty());
}

/** A dead disk beside a healthy one, which answers again once that one was asked so often. */
class ReleaseOfADiskThatComesBack : public ReleaseOfADisk, public testing::WithParamInterface<int>
{
};

TEST_P(ReleaseOfADiskThatComesBack, WritesBackToItBeforeItsRemoval)
{
    add(dead());
    seam.disks["sdc"].pages = {page83(WWN)};
    KernelDisk healthy;
    healthy.name = "sdd";
    healthy.address = "1:0:0:2";
    add(healthy);
    int asked = 0;
    seam.onInquiry = [&](const std::string& disk) {
        if (disk == "sdd" && ++asked == GetParam()) { // the state of sdc has been read for this look
            seam.write("/sys/devices/1:0:0:1/state", "running\n");
        }
        return false;
    };
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
    EXPECT_THAT(order({"flush: sdc"}), ElementsAre("flush: sdc"));
}
INSTANTIATE_TEST_SUITE_P(AfterTheLastWritingBackAndAfterTheLastLook, ReleaseOfADiskThatComesBack,
                         testing::Values(2, 3));

TEST_F(ReleaseOfADisk, LooksAgainForUsesOfADiskThatComesBack)
{
    add(KernelDisk());
    onKernel = [&] {
        if (!isThere()) {
            add(KernelDisk());
            mountDisk();
        }
    };
    EXPECT_THAT(released(), AllOf(HasSubstr("it is in use: sdc is mounted on /data"),
                                  HasSubstr("another scan has found it again meanwhile")));
    EXPECT_TRUE(isThere());
}

TEST_F(ReleaseOfADisk, EndsWhenADiskComesBackAsOftenAsItIsRemoved)
{
    add(KernelDisk());
    onKernel = [&] {
        if (!isThere()) {
            add(KernelDisk());
        }
    };
    EXPECT_THAT(released(), HasSubstr("/dev/sdc stays"));
}

TEST_F(ReleaseOfADisk, LeavesADiskThatIsAnotherByNow)
{
    KernelDisk reused;
    reused.now = OTHER_WWN;
    add(reused);
    EXPECT_EQ(released(), "");
    EXPECT_TRUE(isThere());
}

TEST_F(ReleaseOfADisk, RemovesTheMapOfADiskThatIsRunningAndAnswersNoMore)
{
    KernelDisk silent;
    silent.now = "";
    add(silent);
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    seam.onSystem = [&](const std::string& command) {
        if (command.find(" multipath -f ") != std::string::npos) {
            std::filesystem::remove_all(seam.root + "/sys/block/dm-3");
            std::filesystem::remove_all(seam.root + "/sys/block/sdc/holders");
        }
    };
    EXPECT_EQ(released(), "");
    EXPECT_FALSE(isThere());
}

TEST_F(ReleaseOfADisk, LetsAMapThatIsUsedGoWhenItsUserEndsWhereForced)
{
    add(KernelDisk());
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    seam.files["/proc/self/mountinfo"] += "40 22 253:3 / /data rw shared:9 - xfs /dev/dm-3 rw\n";
    EXPECT_THAT(released(true),
                HasSubstr("stays until what uses it has ended; its paths are gone, and it is hidden"));
    EXPECT_FALSE(isThere());
    EXPECT_THAT(commands(), testing::Contains(std::string("system: timeout 5 dmsetup remove --deferred 3") +
                                              WWN + " >/dev/null 2>&1"));
    EXPECT_THAT(platform.journal(), testing::Contains(HasSubstr("fail_if_no_path")))
        << "its user waits for nothing";
}

TEST_F(ReleaseOfADisk, TellsWhichDiskTheKernelKeeps)
{
    add(KernelDisk());
    seam.onUsleep = [this] { ++seam.clock; };
    std::filesystem::remove(seam.root + "/sys/devices/1:0:0:1/delete");
    EXPECT_THAT(released(), HasSubstr("/dev/sdc stays: /sys/class/scsi_device/1:0:0:1/device/delete: No such "
                                      "file or directory; call again to go on from there"));
}

TEST_F(ReleaseOfADisk, LeavesAMapThatHoldsAnotherDisk)
{
    add(KernelDisk());
    addForeign();
    KernelMap map;
    map.paths = {"sdc", "sdd"};
    add(map);
    EXPECT_THAT(released(),
                HasSubstr(" holds what is not it: /dev/sdd is another disk; the map and its paths "
                          "stay"));
    EXPECT_TRUE(isThere("sdc") && isThere("sdd"));
}
