#include "ScannerTest.h"

#include "host/HostRescan.h"

#include <ovra/disk/RescanScript.h>

#include <filesystem>
#include <fstream>

using namespace ovra::disk;

using testing::ElementsAre;
namespace fs = std::filesystem;

namespace {

/** The lines of the script that read an answer to INQUIRY. */
const char* const FAULTY = R"(  INQ=$(sg_inq "$sg_len_arg" /dev/$SGDEV 2>/dev/null)
  IPTYPE=$(echo "$INQ" | sed -n 's/.* Device_type=\([0-9]*\) .*/\1/p')
  IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\)  Device.*/\1/p')
)";
const char* const MENDED_IN_PLACE = R"(
  IPTYPE=$(echo "$INQ" | sed -n 's/.* \(Device_type\|PDT\)=\([0-9]*\) .*/\2/p')
  IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\)  \(Device\|PDT\).*/\1/p')
)";
const char* const MENDED_BY_A_SECOND_PATTERN = R"(
  IPTYPE=$(echo "$INQ" | sed -n 's/.* Device_type=\([0-9]*\) .*/\1/p')
  [ -n "$IPTYPE" ] || IPTYPE=$(echo "$INQ" | sed -n 's/.* PDT=\([0-9]*\) .*/\1/p')
  IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\)  Device.*/\1/p')
  [ -n "$IPQUAL" ] || IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\)  PDT.*/\1/p')
)";
const char* const MENDED_BY_HALF = R"(
  IPTYPE=$(echo "$INQ" | sed -n 's/.* \(Device_type\|PDT\)=\([0-9]*\) .*/\2/p')
  IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\)  Device.*/\1/p')
)";
const char* const READS_THE_OLD_TYPE = R"(
  IPTYPE=$(echo "$INQ" | sed -n 's/.* Device_type=\([0-9]*\) .*/\1/p')
  IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\) .*/\1/p')
)";
const char* const READS_ANY_QUALIFIER = R"(
  IPTYPE=$(echo "$INQ" | sed -n 's/.* PDT=\([0-9]*\) .*/\1/p')
  IPQUAL=$(echo "$INQ" | sed -n 's/ *PQual=\([0-9]*\) .*/\1/p')
)";
const char* const COMMENT = "# sg_inq used to print PQual=0  Device_type=0\n";

const std::string NEW_SG_INQ("\x7f"
                             "ELF\0  PQual=%d  PDT=%d  RMB=%d  LU_CONG=%d\0",
                             45);
const std::string OLD_SG_INQ("\x7f"
                             "ELF\0  PQual=%d  Device_type=%d  RMB=%d  LU_CONG=%d\0",
                             53);

const char* const WITHOUT_REMOVAL = "rescan-scsi-bus.sh >/dev/null 2>&1";

} // namespace

TEST(RescanScript, ThatLooksForTheOldWordsOnlyHasTheFault)
{
    EXPECT_TRUE(readsOnlyOldInquiry(FAULTY));
    EXPECT_TRUE(readsOnlyOldInquiry(std::string(COMMENT) + "# PDT= is new\n" + FAULTY));
    EXPECT_TRUE(readsOnlyOldInquiry(MENDED_BY_HALF));
    EXPECT_TRUE(readsOnlyOldInquiry(READS_THE_OLD_TYPE));
}

TEST(RescanScript, ThatKnowsTheNewWordsTooIsSound)
{
    EXPECT_FALSE(readsOnlyOldInquiry(MENDED_IN_PLACE));
    EXPECT_FALSE(readsOnlyOldInquiry(MENDED_BY_A_SECOND_PATTERN));
    EXPECT_FALSE(readsOnlyOldInquiry(READS_ANY_QUALIFIER));
}

TEST(RescanScript, ThatDoesNotReadInquiriesIsSound)
{
    EXPECT_FALSE(readsOnlyOldInquiry(""));
    EXPECT_FALSE(readsOnlyOldInquiry(COMMENT));
    EXPECT_FALSE(readsOnlyOldInquiry("#!/bin/sh\nexec /usr/bin/rescan-scsi-bus.sh \"$@\"\n"));
}

TEST(SgInq, ShowsWhichWordsItPrints)
{
    EXPECT_TRUE(printsOldInquiry(OLD_SG_INQ));
    EXPECT_FALSE(printsOldInquiry(NEW_SG_INQ));
    EXPECT_FALSE(printsOldInquiry("")); // unknown: not to be relied on
}

class RescanPrograms : public ScannerTest
{
protected:
    RescanPrograms()
    {
        char pattern[] = "/tmp/rescan-command-XXXXXX";
        root = mkdtemp(pattern);
        for (const char* const directory : {"first", "second"}) {
            fs::create_directories(root / directory);
        }
        setenv("PATH", path().c_str(), 1);
    }
    ~RescanPrograms() override { fs::remove_all(root); }

    std::string path() const { return (root / "first").string() + ":" + (root / "second").string(); }

    /** What a rescan runs. */
    std::string rescanCommand()
    {
        RecordingPlatform::get().reset();
        rescanHost(Presence::ABSENT);
        return commands().front();
    }

    void install(const fs::path& file, const std::string& content, bool executable = true)
    {
        std::ofstream(root / file, std::ios::binary) << content;
        fs::permissions(root / file, executable ? fs::perms(0755) : fs::perms(0644));
    }

    fs::path root;
};

TEST_F(RescanPrograms, AreFoundAsTheShellFindsThem)
{
    EXPECT_EQ(findInPath("tool", path()), "");
    install("second/tool", "");
    EXPECT_EQ(findInPath("tool", path()), root / "second/tool");
    fs::create_directories(root / "first/tool"); // a directory is no program
    EXPECT_EQ(findInPath("tool", path()), root / "second/tool");
    install("first/other", "", false); // nor is a file that cannot be run
    install("second/other", "");
    EXPECT_EQ(findInPath("other", path()), root / "second/other");
    EXPECT_EQ(findInPath("other", ""), "");
    EXPECT_EQ(presenceOf("tool", (root / "second/other").string()), Presence::ABSENT); // a file is no folder
}

TEST_F(RescanPrograms, ThatDoNotFitEachOtherRescanWithoutRemoval)
{
    install("second/rescan-scsi-bus.sh", FAULTY);
    install("second/sg_inq", NEW_SG_INQ);
    EXPECT_EQ(rescanCommand(), WITHOUT_REMOVAL);
    EXPECT_THAT(
        platform.lines("error: "),
        ElementsAre("error: " + (root / "second/rescan-scsi-bus.sh").string() +
                    " takes healthy disks for gone and would remove them: rescanning without -r, so that "
                    "disks that are gone stay. Install sg3-utils 1.48 or later."));
}

TEST_F(RescanPrograms, ThatCannotBeReadRescanWithoutRemoval)
{
    install("second/rescan-scsi-bus.sh", FAULTY);
    install("second/sg_inq", NEW_SG_INQ);
    const std::string script = (root / "second/rescan-scsi-bus.sh").string();
    seam.outOfReach = script;
    EXPECT_EQ(rescanCommand(), WITHOUT_REMOVAL);
    EXPECT_THAT(
        platform.lines("error: "),
        ElementsAre("error: Whether a rescan with -r would remove healthy disks cannot be told, " + script +
                    " cannot be read: Too many open files: rescanning without -r, so that disks that are "
                    "gone stay."));

    fs::create_directories(root / "opt");
    install("opt/stock.sh", FAULTY);
    install("second/rescan-scsi-bus.sh",
            "#!/bin/sh\nexec " + (root / "opt/stock.sh").string() + " $@ </dev/null\n");
    seam.outOfReach = root / "opt/stock.sh";
    EXPECT_EQ(rescanCommand(), WITHOUT_REMOVAL) << "nor what a wrapper calls";
    seam.outOfReach = "/proc/self/status"; // as one that can be written alone
    install("second/rescan-scsi-bus.sh", "#!/bin/sh\necho > /proc/self/status\n");
    EXPECT_EQ(rescanCommand(), SCRIPT) << "which is no script";
    install("second/rescan-scsi-bus.sh", FAULTY);
    seam.outOfReach.clear();
    seam.hasNoDescriptors = true;
    EXPECT_EQ(rescanCommand(), WITHOUT_REMOVAL);
    seam.hasNoDescriptors = false;
    install("second/sg_inq", OLD_SG_INQ);
    EXPECT_EQ(rescanCommand(), SCRIPT);
}

TEST_F(RescanPrograms, OfTheSameOldAgeRescanWithRemoval)
{
    install("second/rescan-scsi-bus.sh", FAULTY);
    install("second/sg_inq", OLD_SG_INQ);
    EXPECT_EQ(rescanCommand(), SCRIPT);
    EXPECT_THAT(platform.lines("error: "), ElementsAre());
}

TEST_F(RescanPrograms, WithoutAnSgInqThatIsKnownToFitRescanWithoutRemoval)
{
    install("second/rescan-scsi-bus.sh", FAULTY);
    EXPECT_EQ(rescanCommand(), WITHOUT_REMOVAL);
}

TEST_F(RescanPrograms, AreJudgedByTheScriptThatComesFirst)
{
    install("second/rescan-scsi-bus.sh", FAULTY);
    install("second/sg_inq", NEW_SG_INQ);
    install("first/rescan-scsi-bus.sh", MENDED_IN_PLACE);
    EXPECT_EQ(rescanCommand(), SCRIPT);
    EXPECT_THAT(platform.lines("error: "), ElementsAre());
}

TEST_F(RescanPrograms, ThatCallTheHarmfulScriptAreAsHarmful)
{
    const fs::path harmful = root / "second/rescan-scsi-bus.sh";
    install("second/rescan-scsi-bus.sh", FAULTY);
    install("second/sg_inq", NEW_SG_INQ);
    for (const char* const wrapper : {"#!/bin/sh\nexec rescan-scsi-bus.sh.real \"$@\"\n",
                                      "#!/bin/sh\nPATH=/usr/bin:$PATH exec ${0##*/} \"$@\"\n",
                                      "#!/usr/bin/python3\nimport os\nos.system('logger rescan')\n"}) {
        install("first/rescan-scsi-bus.sh", wrapper);
        EXPECT_EQ(harmfulRescanScript(path()), harmful) << wrapper;
        EXPECT_EQ(rescanCommand(), WITHOUT_REMOVAL);
    }
}

TEST_F(RescanPrograms, AreFollowedToAScriptElsewhere)
{
    install("second/sg_inq", NEW_SG_INQ);
    fs::create_directories(root / "opt");
    install("opt/stock.sh", std::string("#!/bin/bash\n") + FAULTY);
    install("opt/middle.sh", "#!/bin/sh\nexec '" + (root / "opt/stock.sh").string() + "' \"$@\"\n");
    install("second/rescan-scsi-bus.sh", "#!/bin/sh\n" + (root / "opt/middle.sh").string() + ";\n");
    EXPECT_EQ(harmfulRescanScript(path()), root / "opt/stock.sh");
    install("opt/middle.sh", "#!/bin/sh\n# not " + (root / "opt/stock.sh").string() + "\n");
    EXPECT_EQ(harmfulRescanScript(path()), "");
    install("opt/middle.sh",
            "#!/bin/sh\nexec " + (root / "second/rescan-scsi-bus.sh").string() + "\n"); // a circle
    EXPECT_EQ(harmfulRescanScript(path()), "");
}

TEST_F(RescanPrograms, OfTheCorpusAreJudgedAsTheirNamesSay)
{
    install("second/sg_inq", NEW_SG_INQ);
    int judged = 0;
    for (const auto& script : fs::directory_iterator(CORPUS "/rescan_script")) {
        const std::string name = script.path().filename();
        const bool isHarmful = name.rfind("harmful", 0) == 0;
        if (isHarmful || name.rfind("sound", 0) == 0) {
            fs::copy_file(script.path(), root / "first/rescan-scsi-bus.sh",
                          fs::copy_options::overwrite_existing);
            fs::permissions(root / "first/rescan-scsi-bus.sh", fs::perms(0755));
            EXPECT_EQ(!harmfulRescanScript(path()).empty(), isHarmful) << name;
            ++judged;
        }
    }
    EXPECT_GE(judged, 7);
}

class DisksThatAreAway : public ScannerTest
{
};

TEST_F(DisksThatAreAway, AreNotRemovedByARescan)
{
    seam.addDisk("sdc", OTHER_WWN);
    seam.addDisk("sdd", OTHER_WWN);
    seam.write("/sys/block/sdd/device/state", "transport-offline\n");
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(commands(), ElementsAre(WHICH, WITHOUT_REMOVAL, WITHOUT_REMOVAL, TMP_BLOCK));
    EXPECT_THAT(
        platform.lines("error: "),
        ElementsAre("error: sdd is transport-offline: rescanning without -r, which would remove it; disks "
                    "that are gone stay."));
}

TEST_F(DisksThatAreAway, AreAnyDevicesThatTheScriptWouldRemove)
{
    seam.addDisk("sdc", OTHER_WWN);
    seam.write("/sys/class/scsi_device/2:0:0:1/device/state", "running\n");
    seam.write("/sys/class/scsi_device/2:0:0:1/device/block/sdc/dev", "8:32\n");
    seam.write("/sys/class/scsi_device/3:0:0:0/device/state", "running\n");
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(commands(), ElementsAre(WHICH, SCRIPT, SCRIPT, TMP_BLOCK));

    platform.reset();
    seam.write("/sys/class/scsi_device/3:0:0:0/device/state", "transport-offline\n"); // a tape
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(commands(), ElementsAre(WHICH, WITHOUT_REMOVAL, WITHOUT_REMOVAL, TMP_BLOCK));
    EXPECT_EQ(platform.lines("error: the device at 3:0:0:0 is transport-offline: ").size(), 1u);
}

class DisksThatMayBeAway : public DisksThatAreAway, public testing::WithParamInterface<const char*>
{
};

TEST_P(DisksThatMayBeAway, AreNotRemovedByARescan)
{
    seam.addDisk("sdc", OTHER_WWN);
    seam.write("/sys/class/scsi_device/3:0:0:0/device/state", "running\n");
    seam.outOfReach = GetParam();
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(commands(), ElementsAre(WHICH, WITHOUT_REMOVAL, WITHOUT_REMOVAL, TMP_BLOCK));
    EXPECT_THAT(
        platform.lines("error: "),
        ElementsAre(std::string("error: Whether a rescan with -r would remove healthy disks cannot be "
                                "told, ") +
                    GetParam() +
                    " cannot be read: Too many open files: rescanning without -r, so that disks that are "
                    "gone stay."));
}

INSTANTIATE_TEST_SUITE_P(OutOfReach, DisksThatMayBeAway,
                         testing::Values("/sys/block/", "/sys/block/sdc/device/state",
                                         "/sys/class/scsi_device/",
                                         "/sys/class/scsi_device/3:0:0:0/device/block",
                                         "/sys/class/scsi_device/3:0:0:0/device/state"));

TEST_F(DisksThatAreAway, SinceTheFirstRunAreNotRemovedByTheSecond)
{
    seam.addDisk("sdc", OTHER_WWN);
    seam.onSystem = [&](const std::string& command) {
        if (command == SCRIPT) {
            seam.write("/sys/block/sdc/device/state", "blocked\n");
        }
    };
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(commands(), ElementsAre(WHICH, SCRIPT, WITHOUT_REMOVAL, TMP_BLOCK));
}

TEST_F(RescanPrograms, ThatAreMissingAreLeftToTheShell)
{
    EXPECT_EQ(rescanCommand(), SCRIPT);
    fs::create_directories(root / "first/rescan-scsi-bus.sh");
    EXPECT_EQ(rescanCommand(), SCRIPT);
}

TEST_F(RescanPrograms, ThatDoNotFitEachOtherAreNotUsedForRemovalByAScan)
{
    install("second/rescan-scsi-bus.sh", FAULTY);
    install("second/sg_inq", NEW_SG_INQ);
    scanner.scanLunAfterAttach(id);
    EXPECT_THAT(commands(), ElementsAre(WHICH, WITHOUT_REMOVAL, WITHOUT_REMOVAL, TMP_BLOCK));
    EXPECT_EQ(platform.lines("error: ").size(), 1u);
}
