#include "KernelDisks.h"

#include "host/Korvex.h"
#include "localdisk/DeadDisks.h"

#include <tessel/Tidy.h>

#include <cerrno>
#include <filesystem>

using namespace ovra::tessel;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* SETTLED = "udevadm control --ping --timeout=5 >/dev/null 2>&1 && udevadm settle "
                                "--timeout=5 >/dev/null 2>&1";
/** What the kernel's own target answers at a number without a LUN: LOGICAL UNIT NOT SUPPORTED. */
const std::vector<unsigned char> NOT_SUPPORTED = {0x70, 0, 5, 0,    0, 0, 0, 10, 0,
                                                  0,    0, 0, 0x25, 0, 0, 0, 0,  0};
const std::vector<unsigned char> NOT_SUPPORTED_BY_DESCRIPTORS = {0x72, 5, 0x25, 0, 0, 0, 0, 0};

class TidyingDisks : public LocalDiskTest
{
protected:
    TidyingDisks()
    {
        addSession("1");
        array = {{"7", WWN}, {"8", OTHER_WWN}};
        platform.replyWith([this](const SentRequest& request) { return answerOf(request.path); });
        manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
        options.isDryRun = false;
        options.steps.stepSeconds = 5;
    }

    /** LUNs that exist, and those of them that the host sees. */
    Reply answerOf(const std::string& path) const
    {
        if (path.find("/iscsi_initiator/") == 0) {
            return Reply::object(R"({"ID":"iqn.2020-01.test:host","PARENTID":"3"})");
        }
        if (path.find("/lun/associate") == 0) {
            std::string records;
            for (const std::string& id : shown) {
                records += (records.empty() ? "" : ",") + record(id);
            }
            return Reply::list("[" + records + "]");
        }
        for (const auto& [id, wwn] : array) {
            if (path == "/lun/" + id) {
                return Reply::object(record(id));
            }
        }
        return path.find("associate") != std::string::npos ? Reply::ok() : Reply::error(1077936859, "none");
    }
    std::string record(const std::string& id) const
    {
        return R"({"ID":")" + id + R"(","WWN":")" + array.at(id) + "\"}";
    }

    /** LUN 7's, whose number is mapped no more. */
    void addDead(const std::string& name = "sdc", const std::string& address = "1:0:0:1")
    {
        KernelDisk dead;
        dead.name = name;
        dead.address = address;
        add(dead);
        loseNumber(name);
    }
    void loseNumber(const std::string& name)
    {
        seam.disks[name].scsiStatus = 2;
        seam.disks[name].sense = NOT_SUPPORTED;
    }
    /** LUN 8's. */
    void addHealthy()
    {
        addForeign();
        shown.push_back("8");
    }
    /** At LUN 7's number is LUN 8 now. */
    void addRenamed()
    {
        KernelDisk renamed;
        renamed.now = OTHER_WWN;
        add(renamed);
        shown.push_back("8");
    }

    /** What is told: "sdc removed: ...". */
    std::vector<std::string> tidy()
    {
        std::vector<std::string> told;
        result = tidyDisks(*manager, "3", options, [&](const DiskTidyFinding& finding) {
            static constexpr const char* VERDICTS[] = {" kept: ", " removable: ", " removed: "};
            told.push_back(finding.disk.device.substr(5) + VERDICTS[finding.verdict] + finding.reason);
            return true;
        });
        return told;
    }
    /** Does it when the array has told of the last dead disk for the first time. */
    void afterTheFirstLook(const std::function<void()>& change)
    {
        auto left = std::make_shared<size_t>(seam.disks.size() - seam.disks.count("dm-3"));
        platform.replyWith([=](const SentRequest& request) {
            if (request.path.find("/snapshot/associate") == 0 && --*left == 0) {
                change();
            }
            return answerOf(request.path);
        });
    }
    bool isThere(const std::string& disk) const
    {
        return std::filesystem::exists(seam.root + "/sys/block/" + disk);
    }

    std::map<std::string, std::string> array; ///< WWNs by ID
    std::vector<std::string> shown;
    DiskTidyOptions options;
    TidyResult result;
};

TEST_F(TidyingDisks, RemovesADiskWhoseNumberIsMappedNoMore)
{
    addDead();
    addHealthy();
    EXPECT_THAT(tidy(),
                ElementsAre("sdc removed: nothing is mapped at its number any more: the array says so, and "
                            "its target too"));
    EXPECT_FALSE(isThere("sdc"));
    EXPECT_TRUE(isThere("sdd"));
    EXPECT_EQ(result.removed, 1U);
    EXPECT_EQ(result.kept, 0U);
    EXPECT_THAT(platform.lines("flush: "), IsEmpty());
    EXPECT_THAT(tidy(), IsEmpty());
}

TEST_F(TidyingDisks, OnlyTellsInADryRun)
{
    addDead();
    options.isDryRun = DiskTidyOptions().isDryRun;
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removable: nothing is mapped")));
    EXPECT_EQ(written("/sys/block/sdc/device/delete"), "");
    EXPECT_EQ(result.removed, 1U);
}

TEST_F(TidyingDisks, HoldsTheRescanLockAndGivesItBack)
{
    addDead();
    bool isHeld = false;
    tidyDisks(*manager, "3", options, [&](const DiskTidyFinding&) {
        isHeld = seam.semaphoreValue == 0;
        return true;
    });
    EXPECT_TRUE(isHeld);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(TidyingDisks, UnderstandsEveryWayToSayThatNothingIsThere)
{
    addDead();
    SeamDisk& disk = seam.disks["sdc"];
    options.isDryRun = true;
    const auto isDead = [&] {
        const std::vector<std::string> told = tidy();
        return !told.empty() && told.front().find("removable") != std::string::npos;
    };
    disk.sense = NOT_SUPPORTED_BY_DESCRIPTORS;
    EXPECT_TRUE(isDead());
    disk.sense[2] = 0x24; // INVALID FIELD IN CDB
    EXPECT_FALSE(isDead());
    disk.sense = NOT_SUPPORTED;
    disk.sense[2] = 2; // NOT READY
    EXPECT_FALSE(isDead());
    disk.sense = NOT_SUPPORTED;
    disk.sense[13] = 1;
    EXPECT_FALSE(isDead());
    disk.sense = NOT_SUPPORTED;
    disk.scsiStatus = 8; // BUSY
    EXPECT_FALSE(isDead());
    for (const int qualifier : {0, 1, 2, 3}) {
        const bool isGone = qualifier % 2 != 0;
        const auto first = static_cast<unsigned char>(qualifier << 5);
        disk.standard = {first};
        EXPECT_EQ(isDead(), isGone) << "without a page: " << qualifier;
        disk.scsiStatus = 0;
        disk.pages.front()[0] = first;
        EXPECT_EQ(isDead(), isGone) << "in the page: " << qualifier;
        disk.scsiStatus = 8;
    }
}

TEST_F(TidyingDisks, EndsWhereADiskCannotBeAsked)
{
    addDead();
    seam.disks["sdc"].openError = EMFILE;
    EXPECT_THAT(failure([this] { tidy(); }), HasSubstr("/dev/sdc cannot be read: Too many open files"));
    seam.disks["sdc"].openError = ENXIO;
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it does not answer"));
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, RemovesADiskWhoseObjectIsMappedAtAnotherNumberNow)
{
    addDead();
    KernelDisk now;
    now.name = "sdd";
    now.address = "1:0:0:2";
    add(now);
    shown = {"7"};
    EXPECT_THAT(tidy(), ElementsAre("sdc removed: it is mapped at another number now, as /dev/sdd"));
    EXPECT_TRUE(isThere("sdd"));
}

TEST_F(TidyingDisks, KeepsOneThatTheArrayShows)
{
    addDead();
    shown = {"7"};
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: the array shows it to this host, but nothing is mapped at its "
                                    "number"));
}

TEST_F(TidyingDisks, RemovesTheDiskOfADeletedObjectAmongOthersOfTheArrayOnly)
{
    addDead();
    array.erase("7");
    EXPECT_THAT(tidy(),
                ElementsAre("sdc kept: nothing is mapped at its number, and nothing shows that it was a disk "
                            "of this array"));
    addHealthy();
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removed: ")));
}

TEST_F(TidyingDisks, TakesANewObjectOfTheSameIdForAnother)
{
    addDead();
    addHealthy();
    array["7"] = "600a0b8000f1c1d2aabbccee00000007";
    shown.push_back("7");
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removed: nothing is mapped")));
}

TEST_F(TidyingDisks, RemovesADiskUnderAnothersNames)
{
    addRenamed();
    EXPECT_THAT(tidy(), ElementsAre("sdc removed: it is number 8 of the array now, under another's names"));
    EXPECT_FALSE(isThere("sdc"));
}

TEST_F(TidyingDisks, RemovesADiskThatUdevNamesAfterAnotherOnceUdevIsAtRest)
{
    add(KernelDisk());
    shown = {"7"};
    seam.link(std::string("/dev/disk/by-id/scsi-3") + WWN, "../../sdc");
    seam.link("/dev/disk/by-id/scsi-SVENDOR_123", "../../sdc");
    seam.link(std::string("/dev/disk/by-id/scsi-3") + OTHER_WWN, "../../sdd");
    EXPECT_THAT(tidy(), IsEmpty());
    EXPECT_THAT(commands(), IsEmpty());
    seam.link(std::string("/dev/disk/by-id/wwn-0x") + OTHER_WWN, "../../sdc");
    EXPECT_THAT(tidy(),
                ElementsAre("sdc kept: its names are another disk's, and udev is late or does not run"));
    EXPECT_THAT(commands(), ElementsAre(std::string("system: ") + SETTLED));
    seam.exits(SETTLED, {0});
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removed: it is number 7 of the array now")));
}

TEST_F(TidyingDisks, KnowsTheNamesOfAnotherByEachOfUdevsLinks)
{
    add(KernelDisk());
    shown = {"7"};
    options.isDryRun = true;
    seam.exits(SETTLED, {0});
    for (const char* const kind : {"scsi-3", "wwn-0x"}) {
        const std::string link = std::string("/dev/disk/by-id/") + kind + OTHER_WWN;
        seam.link(link, "../../sdc");
        EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removable: it is number 7 of the array now"))) << kind;
        std::filesystem::remove(seam.root + link);
    }
    EXPECT_THAT(tidy(), IsEmpty());
}

TEST_F(TidyingDisks, LeavesADiskWhoseNamesUdevWasAboutToMend)
{
    add(KernelDisk());
    seam.link(std::string("/dev/disk/by-id/wwn-0x") + OTHER_WWN, "../../sdc");
    seam.exits(SETTLED, {0});
    seam.onSystem = [&](const std::string&) { std::filesystem::remove_all(seam.root + "/dev/disk/by-id"); };
    EXPECT_THAT(tidy(), IsEmpty());
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, RemovesTheMapOfAllItsDeadPathsWithThem)
{
    addDead();
    addDead("sdd", "1:0:0:2");
    KernelMap map;
    map.paths = {"sdc", "sdd"};
    add(map);
    seam.onSystem = [&](const std::string& command) {
        if (command.find("multipath -f") != std::string::npos) {
            std::filesystem::remove_all(seam.root + "/sys/block/dm-3");
            std::filesystem::remove_all(seam.root + "/sys/block/sdc/holders/dm-3");
            std::filesystem::remove_all(seam.root + "/sys/block/sdd/holders/dm-3");
        }
    };
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removed"), HasSubstr("sdd removed")));
    EXPECT_THAT(commands(),
                ElementsAre("system: timeout 5 multipath -f 3" + std::string(WWN) + " >/dev/null 2>&1"));
}

TEST_F(TidyingDisks, KeepsAMapThatHasALivingPath)
{
    addDead();
    addHealthy();
    KernelMap map;
    map.paths = {"sdc", "sdd"};
    map.wwid = std::string("3") + OTHER_WWN;
    add(map);
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: its map 3" + std::string(OTHER_WWN) +
                                    " has the path sdd, which stays"));
    EXPECT_THAT(commands(), IsEmpty());
}

TEST_F(TidyingDisks, KeepsADiskWhoseMapStays)
{
    addDead();
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: its map 3" + std::string(WWN) + " stays: multipath -f 3" +
                                    WWN + " says why"));
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, KeepsADiskInUse)
{
    addDead();
    seam.files["/proc/self/mountinfo"] += "40 22 8:0 / /data rw shared:9 - xfs /dev/sdc rw\n";
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it is in use: sdc is mounted on /data"));
}

TEST_F(TidyingDisks, KeepsWhatIsAwayAndNeverAsksIt)
{
    for (const char* const state : {"blocked", "transport-offline", "offline"}) {
        KernelDisk away;
        away.state = state;
        away.now = "";
        add(away);
        EXPECT_THAT(tidy(), ElementsAre(std::string("sdc kept: it is ") + state + " and cannot be asked"));
        remove("sdc");
    }
    EXPECT_THAT(platform.lines("open: "), IsEmpty());
}

TEST_F(TidyingDisks, KeepsWhatDoesNotAnswer)
{
    KernelDisk silent;
    silent.now = "";
    add(silent);
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it does not answer"));
}

TEST_F(TidyingDisks, KeepsADiskOfWhichNothingIsKnown)
{
    KernelDisk unknown;
    unknown.known = "";
    add(unknown);
    loseNumber("sdc");
    EXPECT_THAT(tidy(),
                ElementsAre("sdc kept: nothing is mapped at its number, and what it was is not known"));
    EXPECT_TRUE(isThere("sdc"));
    remove("sdc");
    unknown.now = OTHER_WWN; // it answers, and is not known to have been another
    add(unknown);
    EXPECT_THAT(tidy(), IsEmpty());
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, KeepsADiskOfAnotherArrayWhateverIsTheMatter)
{
    addDead();
    KernelDisk renamed;
    renamed.name = "sde";
    renamed.address = "1:0:1:1";
    renamed.now = OTHER_WWN;
    add(renamed);
    addHealthy();
    array.clear();
    shown.clear();
    EXPECT_THAT(tidy(),
                ElementsAre(HasSubstr("sdc kept: nothing is mapped at its number, and nothing shows"),
                            "sde kept: it is another disk than its names say, and none of this array"));
}

TEST_F(TidyingDisks, LooksAtTheArraysOwnSessionsOnly)
{
    seam.write("/sys/devices/platform/host1/session1/initiatorname", "iqn.other\n");
    platform.replyWith(
        [](const SentRequest&) { return Reply::object(R"({"ID":"iqn.other","PARENTID":"4"})"); });
    addDead();
    EXPECT_THAT(tidy(), IsEmpty());
    EXPECT_THAT(platform.lines("sem"), IsEmpty()) << "no lock is needed for a host that is another machine";
}

TEST_F(TidyingDisks, NeverRemovesLunZero)
{
    addDead("sdc", "1:0:0:0");
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it has the LUN number 0, which is never removed"));
}

TEST_F(TidyingDisks, KeepsOneThatIsShownWhenItIsAskedAgain)
{
    addDead();
    afterTheFirstLook([&] { shown = {"7"}; });
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc kept: /dev/sdc: the array shows it to this host")));
    EXPECT_EQ(result.kept, 1U);
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, KeepsOneThatIsWellWhenItIsAskedAgain)
{
    addDead();
    afterTheFirstLook([&] { seam.disks["sdc"].scsiStatus = 0; });
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it is well by now"));
}

TEST_F(TidyingDisks, KeepsADiskThatHasTheNameOfOneThatWent)
{
    addDead();
    afterTheFirstLook([&] {
        remove("sdc");
        addDead("sdc", "1:0:0:5");
    });
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it has changed meanwhile: call it again"));
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, KeepsAMapOfWhichAPathIsWellWhenItIsAskedAgain)
{
    addDead();
    addDead("sdd", "1:0:0:2");
    KernelMap map;
    map.paths = {"sdc", "sdd"};
    add(map);
    afterTheFirstLook([&] { seam.disks["sdd"].scsiStatus = 0; });
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: it is well by now", "sdd kept: it is well by now"));
    EXPECT_THAT(commands(), IsEmpty());
}

TEST_F(TidyingDisks, RemovesADiskWhoseMapIsAnothers)
{
    add(KernelDisk());
    KernelMap map;
    map.wwid = std::string("3") + OTHER_WWN;
    map.paths = {"sdc"};
    add(map);
    seam.exits(SETTLED, {0});
    options.isDryRun = true;
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removable: it is number 7 of the array now")));
}

TEST_F(TidyingDisks, ThrowsBesideKorvex)
{
    addDead();
    g_korvexInstalled = true;
    EXPECT_THAT(failure([&] { tidy(); }), HasSubstr("host 3: the Korvex product is installed on this host"));
    g_korvexInstalled = false;
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, EndsEarlyAndGoesOnLater)
{
    addDead();
    addDead("sdd", "1:0:0:2");
    addDead("sde", "1:0:0:3");
    options.most = 2;
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sdc removed"), HasSubstr("sdd removed")));
    EXPECT_FALSE(result.isComplete);
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("sde removed")));
    EXPECT_TRUE(result.isComplete);
}

TEST_F(TidyingDisks, ThrowsWhenTheArrayCannotBeAskedAndRemovesNothing)
{
    addDead();
    platform.replyWith([&](const SentRequest& request) {
        return request.path.find("/lun/associate") == 0 ? Reply::error(1077949999, "broken")
                                                        : answerOf(request.path);
    });
    EXPECT_THAT(failure([&] { tidy(); }), HasSubstr("1077949999"));
    EXPECT_TRUE(isThere("sdc"));
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(TidyingDisks, NeedsTheHost)
{
    EXPECT_EQ(failure([&] { tidyDisks(*manager, ""); }), "Exception:hostID is empty! tidyDisks");
}

TEST_F(TidyingDisks, TakesAnInitiatorThatTheArrayDoesNotKnowForAnothers)
{
    addDead();
    platform.replyWith([&](const SentRequest& request) {
        return request.path.find("/iscsi_initiator/") == 0 ? Reply::error(1077936859, "none")
                                                           : answerOf(request.path);
    });
    EXPECT_THAT(tidy(), IsEmpty());
    EXPECT_TRUE(isThere("sdc"));
}

TEST_F(TidyingDisks, KeepsADiskWhoseObjectIsShownAndTellsNoWwn)
{
    addDead();
    addHealthy();
    shown = {"7", "8"};
    array["7"] = "no WWN!";
    EXPECT_THAT(tidy(), ElementsAre("sdc kept: the array shows it to this host, but nothing is mapped at its "
                                    "number"));
}

TEST_F(TidyingDisks, KeepsAMapThatHoldsNoScsiDisk)
{
    addDead();
    seam.write("/sys/block/loop7/size", "8\n");
    KernelMap map;
    map.paths = {"sdc", "loop7"};
    add(map);
    const DiskJob host(*manager, "3", options.steps);
    EXPECT_EQ(DeadDisks(host, ways).doubtAbout(*ovra::disk::scsiDisk("sdc")),
              "its map 3" + std::string(WWN) + " holds what is no SCSI disk, loop7");
    EXPECT_THAT(tidy(), ElementsAre(HasSubstr("has the path loop7, which stays")));
}

TEST_F(TidyingDisks, EndsWhereWhoIsToldSaysSoAndNeedsNobodyToTell)
{
    addDead();
    addDead("sdd", "1:0:0:2");
    const TidyResult first = tidyDisks(*manager, "3", options, [](const DiskTidyFinding&) { return false; });
    EXPECT_EQ(first.removed, 1U);
    EXPECT_FALSE(first.isComplete);
    options.most = 0;
    const TidyResult rest = tidyDisks(*manager, "3", options);
    EXPECT_EQ(rest.removed, 1U);
    EXPECT_TRUE(rest.isComplete);
}

} // namespace
