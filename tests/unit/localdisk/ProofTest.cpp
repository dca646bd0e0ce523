#include "ProofOfADisk.h"

#include <random>

using namespace ovra::tessel;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST_F(ProofOfADisk, HandsOutTheDisk)
{
    add(KernelDisk());
    EXPECT_EQ(proved(), "/dev/sdc");
}

TEST_F(ProofOfADisk, HandsOutTheMapOfSeveralPaths)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    EXPECT_EQ(proved(), "/dev/dm-3");
}

TEST_F(ProofOfADisk, TakesADeadPathOfItsMapForItsOwn)
{
    addTwoPaths();
    KernelDisk dead;
    dead.name = "sdd";
    dead.address = "2:0:1:1";
    dead.now = "";
    dead.state = "transport-offline";
    add(dead);
    addMap({"sdc", "sdaa", "sdd"});
    EXPECT_EQ(proved(), "/dev/dm-3");
    EXPECT_THAT(handedOut.disks, UnorderedElementsAre("sdc", "sdaa", "sdd")) << "also the dead one";
}

TEST_F(ProofOfADisk, RefusesAForeignPathInTheMap)
{
    addTwoPaths();
    addForeign("sdd", "2:0:1:1");
    addMap({"sdc", "sdaa", "sdd"});
    EXPECT_THAT(proved(), HasSubstr("holds what is not it: /dev/sdd is another disk"));
}

TEST_F(ProofOfADisk, RefusesAPathOfTheMapThatHasBecomeAnotherDisk)
{
    addTwoPaths();
    KernelDisk reused;
    reused.name = "sdd";
    reused.address = "2:0:1:1";
    reused.now = OTHER_WWN;
    add(reused);
    addMap({"sdc", "sdaa", "sdd"});
    EXPECT_THAT(proved(), HasSubstr("/dev/sdd is another disk"));
}

TEST_F(ProofOfADisk, RefusesASmallerPath)
{
    addTwoPaths();
    seam.write("/sys/block/sdaa/size", "2048\n");
    addMap({"sdc", "sdaa"});
    EXPECT_THAT(proved(), HasSubstr("/dev/sdaa has 1048576 bytes where the array tells 67108864 bytes"));
}

TEST_F(ProofOfADisk, RefusesAPathOfAnotherArray)
{
    lun.replace(lun.find("\"7\""), 3, "\"9\"");
    platform.replyWith([this](const SentRequest&) { return Reply::object(lun); });
    add(KernelDisk());
    std::string said = failure([&] {
        manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
        const DiskJob other(*manager, StorageObject::lun("9"), options);
        const Sight sight = lookForOurs(other, {"1"});
        EXPECT_THAT(sight.ours, IsEmpty());
        other.fail(sight.foreign.at(0));
    });
    EXPECT_THAT(said, HasSubstr("/dev/sdc has its WWN, and is number 7 of its array"));
}

TEST_F(ProofOfADisk, RefusesAReadOnlyPath)
{
    addTwoPaths();
    seam.write("/sys/block/sdaa/ro", "1\n");
    EXPECT_THAT(proved(), HasSubstr("/dev/sdaa is read-only"));
}

TEST_F(ProofOfADisk, RefusesALunThatIsReadOnlyOnItsOnlyPath)
{
    KernelDisk disk;
    disk.isReadOnly = true;
    add(disk);
    EXPECT_THAT(proved(), HasSubstr("/dev/sdc is read-only"));
}

TEST_F(ProofOfADisk, RefusesAMapThatIsNotReady)
{
    addSuspendedMap();
    EXPECT_THAT(proved(), HasSubstr(std::string("the map 3") + WWN +
                                    " is not ready after 0 s; multipathd status and its log say why! "));
}

TEST_F(ProofOfADisk, WaitsForAMapThatIsNotReady)
{
    addSuspendedMap();
    options.mapSeconds = 60;
    onKernel = [&] { seam.write("/sys/block/dm-3/dm/suspended", "0\n"); };
    EXPECT_EQ(proved(), "/dev/dm-3");
    EXPECT_EQ(platform.lines("inquiry: sdc").size(), 2U) << "after a wait every path is asked again";
}

TEST_F(ProofOfADisk, FindsAnewWhenADiskGoesMeanwhile)
{
    addTwoPaths();
    unsigned found = 0;
    const auto find = [&] {
        const std::vector<ovra::disk::ScsiDisk> ours = lookForOurs(job(), {"1", "2"}).ours;
        if (++found == 1) {
            remove("sdaa");
        }
        return ours;
    };
    EXPECT_EQ(prove(job(), find, Sizes::PROVED).path, "/dev/sdc");
    EXPECT_EQ(found, 2U);
}

TEST_F(ProofOfADisk, EndsWhenTheDisksGoEachTime)
{
    addTwoPaths();
    const std::vector<ovra::disk::ScsiDisk> ours = lookForOurs(job(), {"1", "2"}).ours;
    remove("sdaa");
    EXPECT_THAT(failure([&] {
                    prove(
                        job(), [&] { return ours; }, Sizes::PROVED);
                }),
                HasSubstr("/dev/sdaa has gone while it was looked at; call again"));
}

TEST_F(ProofOfADisk, WaitsForAMapThatIsComing)
{
    addTwoPaths();
    claim({0});
    EXPECT_THAT(proved(), HasSubstr("the multipath map of /dev/sdaa is not there after 0 s"));
    options.mapSeconds = 60;
    onKernel = [&] {
        addMap({"sdc", "sdaa"});
        onKernel = nullptr;
    };
    EXPECT_EQ(proved(), "/dev/dm-3");
}

TEST_F(ProofOfADisk, HandsOutAPathWhereMultipathTakesNone)
{
    addTwoPaths();
    claim({1}, 0);
    EXPECT_EQ(proved(), "/dev/sdaa");
    EXPECT_EQ(commands().size(), 6U)
        << "of each path it is asked once: udev, whether a map is coming, whether none is";
}

TEST_F(ProofOfADisk, NeverHandsOutAPathWhileMultipathDoesNotSay)
{
    addTwoPaths();
    claim({1});
    EXPECT_THAT(
        proved(),
        HasSubstr("neither udev nor multipath says whether there will be a map of /dev/sdaa after 0 s"));
    options.mapSeconds = 60;
    claim({1, 1, 0});
    onKernel = [&] {
        if (commands().size() > 6) {
            addMap({"sdc", "sdaa"});
            onKernel = nullptr;
        }
    };
    EXPECT_EQ(proved(), "/dev/dm-3");
}

TEST_F(ProofOfADisk, AsksMultipathWhereUdevStaysAway)
{
    addTwoPaths();
    claim({1}, 0, 1);
    options.mapSeconds = 60;
    EXPECT_EQ(proved(), "/dev/sdaa");
}

TEST_F(ProofOfADisk, HandsOutAPathThatMultipathWouldTakeWhereItsDaemonDoesNotRun)
{
    addTwoPaths();
    claim({0});
    options.mapSeconds = 60;
    seam.link("/proc/self/ns/pid", "pid:[4026531836]");
    seam.write("/proc/1/comm", "systemd\n");
    EXPECT_EQ(proved(), "/dev/sdaa");
}

TEST_F(ProofOfADisk, WaitsForAMapOfADaemonThatIsStartedAgain)
{
    addTwoPaths();
    claim({0});
    options.mapSeconds = 60;
    seam.link("/proc/self/ns/pid", "pid:[4026531836]");
    seam.write("/proc/1/comm", "systemd\n");
    onKernel = [&] {
        seam.write("/proc/812/comm", "multipathd\n");
        if (platform.lines("usleep: ").size() > 20) {
            addMap({"sdc", "sdaa"});
            onKernel = nullptr;
        }
    };
    EXPECT_EQ(proved(), "/dev/dm-3");
}

TEST_F(ProofOfADisk, WaitsForAPathThatItsMapHasNotYet)
{
    addTwoPaths();
    addMap({"sdc"});
    EXPECT_THAT(proved(), HasSubstr(std::string("/dev/sdaa is not in the map 3") + WWN));
    options.mapSeconds = 60;
    onKernel = [&] {
        seam.link("/sys/block/dm-3/slaves/sdaa", "../../sdaa");
        seam.link("/sys/block/sdaa/holders/dm-3", "../../dm-3");
        onKernel = nullptr;
    };
    EXPECT_EQ(proved(), "/dev/dm-3");
}

TEST_F(ProofOfADisk, PausesWhileUdevHasNotNamedTheMap)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    options.mapSeconds = 60;
    EXPECT_EQ(proved(), "/dev/dm-3");
    EXPECT_GE(platform.lines("usleep: ").size(), 4U) << "a pause takes a second, udev gets five";
}

TEST_F(ProofOfADisk, HandsOutNoMapThatWentWhileItWasWaitedFor)
{
    addTwoPaths();
    addMap({"sdc"});
    options.mapSeconds = 60;
    onKernel = [&] {
        std::filesystem::remove_all(seam.root + "/sys/block/sdc/holders/dm-3");
        std::filesystem::remove_all(seam.root + "/sys/block/dm-3");
        onKernel = nullptr;
    };
    EXPECT_THAT(proved(), AnyOf("/dev/sdc", "/dev/sdaa"));
}

TEST_F(ProofOfADisk, RefusesAPathThatIsAnotherDiskWhenTheMapHasCome)
{
    addSuspendedMap();
    options.mapSeconds = 60;
    onKernel = [&] {
        seam.write("/sys/block/dm-3/dm/suspended", "0\n");
        seam.addDisk("sdaa", OTHER_WWN);
        onKernel = nullptr;
    };
    EXPECT_THAT(proved(), HasSubstr("by now; call again"));
}

TEST_F(ProofOfADisk, RefusesPathsInTheMapOfAnotherDisk)
{
    addTwoPaths();
    KernelMap map;
    map.paths = {"sdc", "sdaa"};
    map.wwid = std::string("3") + OTHER_WWN;
    add(map);
    EXPECT_THAT(proved(), HasSubstr("of another disk, 3600a0b8000f1c1d2aabbccdd00000008"));
}

TEST_F(ProofOfADisk, RefusesPathsInTwoMaps)
{
    addTwoPaths();
    addMap({"sdc"});
    KernelMap second;
    second.node = "dm-4";
    second.paths = {"sdaa"};
    add(second);
    EXPECT_THAT(proved(), HasSubstr("its paths are in 2 maps: dm-3, dm-4"));
}

TEST_F(ProofOfADisk, RefusesAMapOfAnotherSize)
{
    addTwoPaths();
    KernelMap map;
    map.paths = {"sdc", "sdaa"};
    map.bytes = MIB;
    add(map);
    EXPECT_THAT(proved(), HasSubstr("has 1048576 bytes and not 67108864 bytes"));
}

TEST_F(ProofOfADisk, RefusesASizeThatTheArrayDoesNotTell)
{
    KernelDisk grown;
    grown.bytes = 2 * BYTES;
    add(grown);
    EXPECT_THAT(proved(), HasSubstr("/dev/sdc has 134217728 bytes where the array tells 67108864 bytes"));
}

TEST_F(ProofOfADisk, ReadsTheSizesOfAGrownLunAgain)
{
    KernelDisk small;
    small.bytes = MIB;
    add(small);
    EXPECT_THAT(proved(Sizes::GROWN), HasSubstr("has 1048576 bytes")) << "the kernel keeps the old size";
    EXPECT_EQ(written("/sys/block/sdc/device/rescan"), "1");
}

TEST_F(ProofOfADisk, ResizesTheMapOfAGrownLun)
{
    addTwoPaths();
    KernelMap small;
    small.paths = {"sdc", "sdaa"};
    small.bytes = MIB;
    add(small);
    seam.onSystem = [&](const std::string&) {
        seam.write("/sys/block/dm-3/size", std::to_string(BYTES / 512) + "\n");
    };
    EXPECT_EQ(proved(Sizes::GROWN), "/dev/dm-3");
    EXPECT_THAT(commands(), ElementsAre("system: timeout 5 multipathd resize map 3" + std::string(WWN) +
                                        " >/dev/null 2>&1"));
    EXPECT_EQ(proved(Sizes::GROWN), "/dev/dm-3");
    EXPECT_EQ(commands().size(), 1U) << "one of the right size is left alone";
}

TEST_F(ProofOfADisk, DoesWithoutNames)
{
    add(KernelDisk()); // nothing in /dev/disk/by-id
    EXPECT_EQ(proved(), "/dev/sdc");
}

TEST_F(ProofOfADisk, NeverAsksADeadPath)
{
    KernelDisk dead;
    dead.state = "blocked";
    add(dead);
    EXPECT_THAT(proved(), HasSubstr("none"));
    EXPECT_THAT(platform.lines("open: "), IsEmpty());
}

TEST_F(ProofOfADisk, HasNoFalseAlarmInAThousandGoodLayouts)
{
    std::mt19937 random(7);
    for (int layout = 0; layout < 1000; ++layout) {
        std::vector<std::string> names;
        const unsigned paths = 1 + random() % 6;
        for (unsigned path = 0; path < paths; ++path) {
            KernelDisk disk;
            const char letter = static_cast<char>('a' + random() % 26);
            disk.name =
                std::string("sd") + (random() % 2 == 0 ? "" : "b") + letter + static_cast<char>('a' + path);
            disk.address = std::to_string(1 + path % 2) + ":0:" + std::to_string(path) + ":" +
                           std::to_string(random() % 300);
            if (path > 0 && random() % 4 == 0) {
                disk.state = "transport-offline";
                disk.now = "";
            }
            add(disk);
            names.push_back(disk.name);
        }
        const bool isMapped = paths > 1 || random() % 2 == 0;
        if (isMapped) {
            addMap(names);
        }
        EXPECT_EQ(proved(), isMapped ? "/dev/dm-3" : "/dev/" + names.front()) << "layout " << layout;
        for (const std::string& name : names) {
            remove(name);
        }
        std::filesystem::remove_all(seam.root + "/sys/block/dm-3");
    }
}
