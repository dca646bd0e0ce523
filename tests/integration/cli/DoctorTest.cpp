#include "HostFixture.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/sem.h>

using ::testing::HasSubstr;

namespace {

constexpr key_t RESCAN_KEY = 1235;

Json::Value checkOf(const Outcome& doctor, const std::string& subject)
{
    const Json::Value checks = doctor.json()["checks"];
    for (const auto& check : checks) {
        if (check["subject"].asString().find(subject) != std::string::npos) {
            return check;
        }
    }
    ADD_FAILURE() << "no check of " << subject << " in " << doctor.out;
    return Json::Value(Json::objectValue);
}

TEST_F(HostTest, DoctorFindsAWholeHostFit)
{
    const Outcome outcome = cli.json({"doctor"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_TRUE(outcome.json()["fit"].asBool());
    EXPECT_EQ(checkOf(outcome, "rescan-scsi-bus.sh -r")["verdict"], "ok");
    EXPECT_EQ(checkOf(outcome, "rescan lock")["found"], "not made yet; the first scan makes it");
    EXPECT_EQ(checkOf(outcome, "session")["found"], "open");
    EXPECT_THAT(expect(0, {"doctor"}).out, HasSubstr("ok       tool lsscsi"));
}

TEST_F(HostTest, DoctorNamesAMissingToolAndItsPackage)
{
    std::filesystem::remove(folder.path() + "/bin/lsscsi");
    std::filesystem::remove(folder.path() + "/bin/multipath");
    const Outcome outcome = cli.json({"doctor"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(checkOf(outcome, "tool lsscsi")["verdict"], "failure");
    EXPECT_THAT(checkOf(outcome, "tool lsscsi")["advice"].asString(),
                HasSubstr("install the package lsscsi"));
    EXPECT_EQ(checkOf(outcome, "tool multipath")["verdict"], "warning");
    EXPECT_THAT(expect(1, {"doctor"}).out, HasSubstr("failure  tool lsscsi"));
}

TEST_F(HostTest, DoctorTellsOfEachToolThatIsMissingWhetherItIsNeeded)
{
    std::filesystem::remove_all(folder.path() + "/bin");
    const Outcome outcome = cli.json({"doctor"});
    for (const char* const tool :
         {"rescan-scsi-bus.sh", "sg_inq", "lsscsi", "timeout", "ls", "grep", "which"}) {
        EXPECT_EQ(checkOf(outcome, std::string("tool ") + tool)["verdict"], "failure") << tool;
    }
    EXPECT_EQ(checkOf(outcome, "tool multipath")["verdict"], "warning");
}

TEST_F(HostTest, WithoutEitherRightNothingIsScannedAndTheDoctorSaysWhich)
{
    for (const int right : {CAP_SYS_ADMIN, CAP_SYS_RAWIO}) {
        cli.prepare = [right] {
            if (unshare(CLONE_NEWIPC) != 0 || prctl(PR_CAPBSET_DROP, right) != 0) {
                _exit(126);
            }
        };
        const bool isAdmin = right == CAP_SYS_ADMIN;
        const Outcome told = cli.json({"doctor"});
        EXPECT_EQ(told.exitCode, 1);
        EXPECT_EQ(checkOf(told, "right CAP_SYS_ADMIN")["verdict"], isAdmin ? "failure" : "ok");
        EXPECT_EQ(checkOf(told, "right CAP_SYS_RAWIO")["verdict"], isAdmin ? "ok" : "failure");
        EXPECT_THAT(expect(1, {"scan", "lun", lun}).err,
                    HasSubstr("the scan writes sysfs and sends SCSI commands"));
    }
}

TEST_F(HostTest, DoctorTellsWhichNamesUdevHasMade)
{
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "/dev/disk/by-id")["found"], "1 names of disks");
    const std::filesystem::path names = folder.path() + "/dev/disk/by-id";
    std::filesystem::rename(names / "scsi-3600", names / "ata-3600");
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "/dev/disk/by-id")["found"], "there, without SCSI disks yet");
    folder.write("dev/disk/by-id/wwn-0x3600", "");
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "/dev/disk/by-id")["found"], "2 names of disks");
    std::filesystem::remove_all(names);
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "/dev/disk/by-id")["verdict"], "warning");
}

TEST_F(HostTest, DoctorTellsByWhatTheArrayIsTrusted)
{
    cli.environment["OVRA_REST_CA_FILE"] = "";
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "trust")["found"], "the certificates of this system");
    const std::string pin = "sha256//" + std::string(43, 'A') + "=";
    EXPECT_EQ(checkOf(cli.json({"doctor", "--pin", pin}), "trust")["found"], "a pinned key");
    EXPECT_EQ(checkOf(cli.json({"doctor", "--insecure"}), "trust")["verdict"], "warning");
}

TEST_F(HostTest, DoctorRecognisesTheRescanScriptThatRemovesHealthyDisks)
{
    stub("rescan-scsi-bus.sh", "sg_inq | grep Device_type=");
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "rescan-scsi-bus.sh -r")["verdict"], "warning");
    stub("sg_inq", "echo Device_type=0");
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "rescan-scsi-bus.sh -r")["verdict"], "ok");
}

TEST_F(HostTest, DoctorSaysWhyARescanWithRemovalCannotBeJudged)
{
    const std::filesystem::path disks = folder.path() + "/sys/block";
    std::filesystem::create_directories(disks.parent_path());
    std::filesystem::remove_all(disks);
    std::filesystem::create_symlink("block", disks); // it leads to itself
    const auto check = checkOf(cli.json({"doctor"}), "rescan-scsi-bus.sh -r");
    EXPECT_EQ(check["verdict"], "warning");
    EXPECT_EQ(check["found"], disks.string() + "/ cannot be read: Too many levels of symbolic links");
}

TEST_F(HostTest, DoctorJudgesTheScriptsOfTheCorpusAsAScanDoes)
{
    int judged = 0;
    for (const auto& script :
         std::filesystem::directory_iterator(TESSELCTL_SOURCE "/../tests/fuzz/corpus/rescan_script")) {
        const std::string name = script.path().filename();
        const bool isHarmful = name.rfind("harmful", 0) == 0;
        if (isHarmful || name.rfind("sound", 0) == 0) {
            std::filesystem::copy_file(script.path(), folder.path() + "/bin/rescan-scsi-bus.sh",
                                       std::filesystem::copy_options::overwrite_existing);
            std::filesystem::permissions(folder.path() + "/bin/rescan-scsi-bus.sh",
                                         std::filesystem::perms(0755));
            EXPECT_EQ(checkOf(cli.json({"doctor"}), "rescan-scsi-bus.sh -r")["verdict"],
                      isHarmful ? "warning" : "ok")
                << name;
            ++judged;
        }
    }
    EXPECT_GE(judged, 7);
}

TEST_F(HostTest, DoctorNamesADiskThatIsAway)
{
    folder.write("sys/block/sda/device/state", "transport-offline\n");
    EXPECT_THAT(expect(0, {"doctor"}).out, HasSubstr("warning  disks: sda is transport-offline"));
}

TEST_F(HostTest, DoctorWarnsOfALockThatAnotherUserMadeOrThatHasTheIdZero)
{
    cli.prepare = [] {
        if (unshare(CLONE_NEWIPC) != 0 || seteuid(65534) != 0) {
            _exit(126);
        }
        semget(RESCAN_KEY, 1, IPC_CREAT | 0600); // the first one of all
        if (seteuid(0) != 0) {
            _exit(126);
        }
    };
    const std::string told = expect(0, {"doctor"}).out;
    EXPECT_THAT(told, HasSubstr("its ID is 0"));
    EXPECT_THAT(told, HasSubstr("made by user 65534"));
}

TEST_F(HostTest, DoctorTellsWhoHoldsTheRescanLock)
{
    cli.prepare = [] {
        if (unshare(CLONE_NEWIPC) != 0) {
            _exit(126);
        }
        const int set = semget(RESCAN_KEY, 1, IPC_CREAT | 0600);
        semctl(set, 0, SETVAL, 0);
    };
    const Json::Value lock = checkOf(cli.json({"doctor"}), "rescan lock");
    EXPECT_EQ(lock["verdict"], "warning");
    EXPECT_THAT(lock["found"].asString(), HasSubstr("held by process"));
}

TEST_F(HostTest, DoctorLooksAtTheWayToTheArray)
{
    const Outcome unreached = cli.json({"doctor", "--array", "127.0.0.1:1"});
    EXPECT_EQ(unreached.exitCode, 1);
    EXPECT_EQ(checkOf(unreached, "array")["verdict"], "failure");
    const std::string noCa = folder.write("empty.pem", "nothing\n");
    EXPECT_EQ(checkOf(cli.json({"doctor", "--ca-file", noCa}), "CA file")["verdict"], "failure");
    cli.environment["TESSEL_PASSWORD"] = "wrong";
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "session")["verdict"], "failure");
}

TEST_F(HostTest, DoctorTellsWithoutAUserWhetherTheArrayAnswers)
{
    const std::string address = cli.environment["TESSEL_ARRAY"];
    for (const char* const name : {"TESSEL_USER", "TESSEL_PASSWORD"}) {
        cli.environment[name] = "";
    }
    const Outcome reached = cli.json({"doctor"});
    EXPECT_EQ(checkOf(reached, "array")["verdict"], "ok") << reached.out;
    EXPECT_EQ(checkOf(reached, "array")["found"], "reached and trusted");
    EXPECT_EQ(checkOf(reached, "session")["verdict"], "failure");
    EXPECT_THAT(checkOf(reached, "session")["advice"].asString(), HasSubstr("no user is named"));

    const Json::Value silent = checkOf(cli.json({"doctor", "--array", "127.0.0.1:1"}), "array");
    EXPECT_EQ(silent["found"], "not reached");
    EXPECT_THAT(silent["advice"].asString(), HasSubstr("nothing listens there"));

    cli.environment["OVRA_REST_PINNED_KEY"] = "";
    cli.environment["OVRA_REST_CA_FILE"] = "";
    const Json::Value stranger = checkOf(cli.json({"doctor"}), "array");
    EXPECT_EQ(stranger["verdict"], "failure");
    EXPECT_THAT(stranger["advice"].asString(), HasSubstr("is not trusted"));
    EXPECT_THAT(stranger["advice"].asString(), HasSubstr("tesselctl fingerprint " + address));
}

} // namespace
