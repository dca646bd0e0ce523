// Why a path or a map is not handed out, and which of its names is.

#include "ProofOfADisk.h"

using namespace ovra::tessel;
using testing::HasSubstr;

namespace {

const std::string MAP = std::string("3") + WWN;

} // namespace

TEST_F(ProofOfADisk, HandsOutTheNameOfAMapThatUdevHasMade)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    seam.write("/dev/mapper/" + MAP, "");
    EXPECT_EQ(proved(), "/dev/mapper/" + MAP);
}

TEST_F(ProofOfADisk, WaitsForTheNameOfAMap)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    options.mapSeconds = 60;
    onKernel = [&] { seam.write("/dev/mapper/" + MAP, ""); };
    EXPECT_EQ(proved(), "/dev/mapper/" + MAP);
}

TEST_F(ProofOfADisk, HandsOutTheNameOfAMapThatGoesAtTheLastLookAndNotItsNumber)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    options.mapSeconds = 60;
    onKernel = [&] {
        seam.write("/dev/mapper/" + MAP, "");
        seam.onInquiry = [&](const std::string&) {
            std::filesystem::remove(seam.root + "/dev/mapper/" + MAP);
            return false;
        };
    };
    EXPECT_EQ(proved(), "/dev/mapper/" + MAP);
}

TEST_F(ProofOfADisk, HandsOutNoMapThatBecameAnothersWhileItsNameWasWaitedFor)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    options.mapSeconds = 60;
    onKernel = [&] {
        seam.clock += 60;
        seam.write("/sys/block/dm-3/dm/uuid", "mpath-3" + std::string(OTHER_WWN) + "\n");
    };
    EXPECT_THAT(proved(), HasSubstr("of another disk, 3" + std::string(OTHER_WWN)));
}

TEST_F(ProofOfADisk, HandsOutNoMapWhosePathsWentWhileItsNameWasWaitedFor)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    options.mapSeconds = 60;
    onKernel = [&] {
        seam.clock += 60;
        remove("sdc");
    };
    EXPECT_THAT(proved(), HasSubstr("/dev/sdc has gone while it was looked at; call again"));
}

TEST_F(ProofOfADisk, TellsWhatAPathOfAMapIsThatIsNotTheObject)
{
    const DiskJob wanted = job();
    EXPECT_EQ(foreignPath(wanted, "sdz"), "/dev/sdz is no SCSI disk");
    KernelDisk path;
    add(path);
    const auto become = [&] {
        remove("sdc");
        add(path);
    };
    EXPECT_EQ(foreignPath(wanted, "sdc"), "");

    path.bytes = 2 * BYTES;
    become();
    EXPECT_EQ(foreignPath(wanted, "sdc"), "/dev/sdc has 134217728 bytes and not 67108864 bytes");
    path.bytes = BYTES;
    path.now = "";
    become();
    EXPECT_EQ(foreignPath(wanted, "sdc"), "/dev/sdc does not answer");
    path.now = OTHER_WWN;
    become();
    EXPECT_EQ(foreignPath(wanted, "sdc"), "/dev/sdc is another disk");
    path.known = OTHER_WWN;
    path.now = WWN;
    become();
    EXPECT_EQ(foreignPath(wanted, "sdc"), "/dev/sdc stands under the names of another disk");
    path.state = "offline";
    become();
    EXPECT_EQ(foreignPath(wanted, "sdc"), "/dev/sdc is offline and was another disk");
    path.known = WWN;
    become();
    EXPECT_EQ(foreignPath(wanted, "sdc"), "") << "a dead path of its own";

    manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
    platform.replyWith([this](const SentRequest&) {
        return Reply::object(std::string(lun).replace(lun.find("\"7\""), 3, "\"9\""));
    });
    path.state = "running";
    become();
    const DiskJob other(*manager, StorageObject::lun("9"), options);
    EXPECT_EQ(foreignPath(other, "sdc"), "/dev/sdc has its WWN, and is number 7 of its array");
}

TEST_F(ProofOfADisk, TakesThePathsAtTheirWordWhereTheArrayTellsNoSize)
{
    lun = R"({"ID":"7","WWN":")" + std::string(WWN) + R"("})";
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    EXPECT_EQ(proved(), "/dev/dm-3");
    EXPECT_EQ(handedOut.bytes, BYTES);
    EXPECT_EQ(foreignPath(job(), "sdc"), "");
    seam.write("/sys/block/sdaa/size", "2048\n");
    EXPECT_THAT(proved(), HasSubstr("where another path has "));
}

TEST_F(ProofOfADisk, RefusesAMapThatCannotBeUsed)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    seam.write("/sys/block/dm-3/ro", "1\n");
    EXPECT_THAT(proved(), HasSubstr("the map " + MAP + " is read-only after 0 s"));
    seam.write("/sys/block/dm-3/ro", "0\n");
    seam.write("/sys/block/dm-3/size", "0\n");
    EXPECT_THAT(proved(), HasSubstr("the map " + MAP + " is not ready after 0 s"));
    seam.write("/sys/block/dm-3/size", "2048\n");
    EXPECT_THAT(proved(), HasSubstr("the map " + MAP + " has 1048576 bytes and not 67108864 bytes"));
    seam.write("/sys/block/dm-3/size", std::to_string(BYTES / 512) + "\n");
    seam.write("/sys/block/dm-3/dm/uuid", "mpath-3" + std::string(OTHER_WWN) + "\n");
    EXPECT_THAT(proved(), HasSubstr("its paths are in the map " + MAP + " of another disk, 3" + OTHER_WWN));
    seam.write("/sys/block/dm-3/dm/uuid", "mpath-" + MAP + "0\n");
    EXPECT_THAT(proved(), HasSubstr("its paths are in the map " + MAP + " of another disk, " + MAP + "0"));
}

TEST_F(ProofOfADisk, RefusesAMapWhosePathsAreLostOnceTheyHaveAnswered)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    seam.onInquiry = [&](const std::string&) {
        seam.write("/sys/devices/1:0:0:1/state", "transport-offline\n");
        seam.write("/sys/devices/2:0:0:1/state", "transport-offline\n");
        return false;
    };
    EXPECT_THAT(proved(), HasSubstr("the map " + MAP + " has no path that works after 0 s"));
}

TEST_F(ProofOfADisk, AsksNobodyToResizeAMapWhoseNameIsNone)
{
    addTwoPaths();
    addMap({"sdc", "sdaa"});
    seam.write("/sys/block/dm-3/size", "2048\n");
    seam.write("/sys/block/dm-3/dm/name", "a;reboot\n");
    EXPECT_THAT(proved(Sizes::GROWN), HasSubstr("has 1048576 bytes and not 67108864 bytes"));
    EXPECT_THAT(commands(), testing::IsEmpty());
}
