// A LocalDisk from its attach to its end, and the proof of a device that somebody else handed out.

#include "KernelDisks.h"

#include "host/Korvex.h"
#include "unit/observer/Recorder.h"

#include <tessel/LocalDisk.h>

#include <filesystem>

using namespace ovra::tessel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

const HostInitiator SHOWN_TO = HostInitiator::iscsi("iqn.2020-01.test:host");

/** LUN 7, which the array shows to host 3; or snapshot 7. */
class ALocalDisk : public LocalDiskTest
{
protected:
    ALocalDisk()
    {
        addSession("1");
        options.lockSeconds = 0;
        platform.replyWith([this](const SentRequest& request) {
            if (request.path.rfind("/iscsi_initiator/", 0) == 0) {
                return Reply::object(R"({"ID":"iqn.2020-01.test:host","PARENTID":"3"})");
            }
            if (request.path == "/lun/7" || request.path == "/SNAPSHOT/7") {
                return Reply::object(lun);
            }
            const bool isListed = request.path.rfind("/lun/associate", 0) == 0 ||
                                  request.path.rfind("/snapshot/associate", 0) == 0;
            return isListed ? Reply::list("[" + lun + "]") : Reply::ok();
        });
        manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
    }

    LocalDisk attached() { return LocalDisk::attach(*manager, StorageObject::lun("7"), SHOWN_TO, options); }
    LocalDisk found() { return LocalDisk::find(*manager, StorageObject::lun("7"), SHOWN_TO, options); }
    bool isThere(const std::string& name = "sdc") const { return seam.disks.count(name) != 0; }
    void addMapOf(const std::vector<std::string>& paths)
    {
        KernelMap map;
        map.paths = paths;
        add(map);
    }
    /** The array makes it larger. */
    void growOnTheArray()
    {
        const std::string before = std::to_string(BYTES / 512);
        lun.replace(lun.find(before), before.size(), std::to_string(2 * BYTES / 512));
    }
    /** Why a device of that name is not LUN 7; empty when it is. */
    std::string verified(const std::string& name)
    {
        seam.write("/dev/" + name, "");
        const std::string device = seam.root + "/dev/" + name;
        std::string said = failure([&] { verifyDisk(*manager, StorageObject::lun("7"), device, options); });
        const size_t at = said.find(device);
        return at == std::string::npos ? said : said.replace(at, device.size(), "IT");
    }
};

} // namespace

TEST_F(ALocalDisk, IsReleasedWithItsObject)
{
    add(KernelDisk());
    {
        const LocalDisk disk = attached();
        EXPECT_EQ(disk.path(), "/dev/sdc");
        disk.verify();
        EXPECT_TRUE(isThere()) << "what verifies it holds nothing";
    }
    EXPECT_FALSE(isThere());
}

TEST_F(ALocalDisk, StaysWhereItIsKept)
{
    add(KernelDisk());
    attached().keep();
    found().keep();
    EXPECT_TRUE(isThere());
}

TEST_F(ALocalDisk, ThatEveryWayHasIsAttachedWithoutTheRescanLock)
{
    add(KernelDisk());
    attached().keep();
    EXPECT_THAT(platform.lines("semop: "), IsEmpty()) << "it would wait for the scans of others";
    EXPECT_EQ(written("/sys/class/scsi_host/host1/scan"), "");
}

TEST_F(ALocalDisk, IsAttachedThroughAnInitiatorThatIsOnlineOnly)
{
    add(KernelDisk());
    seam.write("/sys/devices/platform/host1/session1/state", "FAILED\n");
    const std::string none =
        "Exception:LUN 7: this host has no iSCSI session of iqn.2020-01.test:host that is online";
    EXPECT_THAT(failure([&] { attached(); }), StartsWith(none + ": session1 "));
    std::filesystem::remove_all(seam.root + "/sys/class/iscsi_session");
    EXPECT_EQ(failure([&] { attached(); }), none + "; log in to the array's target! LocalDisk");
    EXPECT_TRUE(isThere());
}

TEST_F(ALocalDisk, IsRefusedBesideKorvex)
{
    add(KernelDisk());
    g_korvexInstalled = true;
    EXPECT_THAT(failure([&] { found(); }), HasSubstr("the Korvex product is installed on this host"));
    g_korvexInstalled = false;
    EXPECT_TRUE(isThere());
}

TEST_F(ALocalDisk, IsNotTheOneOfAnotherArrayWithItsWwn)
{
    add(KernelDisk());
    lun.replace(lun.find("\"7\""), 3, "\"9\"");
    platform.replyWith([this](const SentRequest&) { return Reply::object(lun); });
    EXPECT_THAT(failure([&] { LocalDisk::find(*manager, StorageObject::lun("9"), SHOWN_TO, options); }),
                HasSubstr("/dev/sdc has its WWN, and is number 7 of its array"));
}

TEST_F(ALocalDisk, IsNotFoundWhereNoDiskAnswersAsIt)
{
    EXPECT_EQ(failure([&] { found(); }), "Exception:LUN 7: no disk of this host answers as it! LocalDisk");
}

TEST_F(ALocalDisk, OfAnObjectWithoutAnIdIsRefused)
{
    EXPECT_EQ(failure([&] { LocalDisk::find(*manager, StorageObject::lun(""), SHOWN_TO, options); }),
              "Exception:the ID of the object is empty! LocalDisk");
    EXPECT_THAT(platform.requests(), IsEmpty());
}

TEST_F(ALocalDisk, HasTheSizeThatTheArrayTellsWhenItIsRefreshed)
{
    add(KernelDisk());
    LocalDisk disk = found();
    growOnTheArray();
    seam.write("/sys/block/sdc/size", std::to_string(2 * BYTES / 512) + "\n");
    disk.refresh();
    EXPECT_EQ(disk.size(), 2 * BYTES);
    disk.keep();
}

TEST_F(ALocalDisk, IsNotVerifiedWhenItHasAnotherPathByNow)
{
    add(KernelDisk());
    LocalDisk disk = found();
    addMapOf({"sdc"});
    EXPECT_THAT(failure([&] { disk.verify(); }), HasSubstr("it is /dev/dm-3 now, and no longer /dev/sdc"));
    disk.keep();
}

TEST_F(ALocalDisk, IsNotVerifiedWhenTheArrayHasAnotherObjectOfItsId)
{
    add(KernelDisk());
    LocalDisk disk = found();
    lun.replace(lun.find(WWN), 32, "600a0b8000f1c1d2aabbccee00000007");
    EXPECT_THAT(failure([&] { disk.verify(); }), HasSubstr("no disk of this host answers as it"));
    disk.keep();
}

TEST_F(ALocalDisk, IsToldToObserversByItsPathWithItsHost)
{
    add(KernelDisk());
    const Recording recording;
    found().keep();
    const OperationEvent told = recording->calls("LocalDisk::find").at(0);
    EXPECT_EQ(told.device, "/dev/sdc");
    EXPECT_EQ(objectsOf(told), "lun 7, host 3; iqn.2020-01.test:host");
    EXPECT_THAT(recording->stepLines(), ElementsAre("found /dev/sdc"));
    attached().release();
    EXPECT_EQ(objectsOf(recording->calls("LocalDisk::attach").at(0)), objectsOf(told));
    EXPECT_EQ(recording->calls("LocalDisk::release").at(0).device, "/dev/sdc");
}

TEST_F(ALocalDisk, IsVerifiedByTheNameOfItsOnlyPath)
{
    add(KernelDisk());
    const Recording recording;
    EXPECT_EQ(verified("sdc"), "");
    EXPECT_EQ(recording->calls("verifyDisk").at(0).device, seam.root + "/dev/sdc");
}

TEST_F(ALocalDisk, IsVerifiedByTheNameOfItsMapAndNotByThatOfAPath)
{
    add(KernelDisk());
    addMapOf({"sdc"});
    EXPECT_EQ(verified("dm-3"), "");
    EXPECT_THAT(verified("sdc"), HasSubstr("IT is one path of /dev/dm-3: use that"));
}

TEST_F(ALocalDisk, IsNotVerifiedByAnythingElse)
{
    addForeign("sdd");
    EXPECT_THAT(verified("sdd"), HasSubstr("IT: /dev/sdd is another disk"));
    EXPECT_THAT(verified("null"), HasSubstr("IT is no SCSI disk and no multipath map of this host"));
    EXPECT_THAT(failure([&] { verifyDisk(*manager, StorageObject::lun("7"), "/dev/away/sdc", options); }),
                HasSubstr("/dev/away/sdc is no SCSI disk and no multipath map of this host"));
}

TEST_F(ALocalDisk, IsNotVerifiedByAMapThatHoldsAnotherDisk)
{
    add(KernelDisk());
    addForeign("sdd");
    addMapOf({"sdc", "sdd"});
    EXPECT_THAT(verified("dm-3"), HasSubstr("IT: /dev/sdd is another disk"));
}

TEST_F(ALocalDisk, IsNotVerifiedThroughPathsThatAreDead)
{
    KernelDisk dead;
    dead.state = "transport-offline";
    dead.now = "";
    add(dead);
    addMapOf({"sdc"});
    EXPECT_THAT(verified("dm-3"), HasSubstr("IT has no path that works"));
    KernelDisk other;
    other.name = "sdd";
    other.address = "1:0:1:1";
    add(other);
    remove("sdc");
    add(dead);
    addMapOf({"sdc", "sdd"});
    EXPECT_EQ(verified("dm-3"), "") << "one works";
}

TEST_F(ALocalDisk, OfAnotherSizeThanTheArrayTellsIsNotVerifiedNorChanged)
{
    add(KernelDisk());
    growOnTheArray();
    EXPECT_THAT(verified("sdc"), HasSubstr("/dev/sdc has 67108864 bytes and not 134217728 bytes"));
    EXPECT_EQ(written("/sys/block/sdc/device/rescan"), "");
    seam.write("/sys/block/sdc/size", std::to_string(2 * BYTES / 512) + "\n");
    addMapOf({"sdc"});
    EXPECT_THAT(verified("dm-3"), HasSubstr("has 67108864 bytes and not 134217728 bytes"));
    EXPECT_THAT(commands(), IsEmpty());
}

TEST_F(ALocalDisk, TellsOfWhatItIs)
{
    add(KernelDisk());
    LocalDisk disk = found();
    EXPECT_EQ(disk.wwn(), WWN);
    EXPECT_EQ(disk.size(), BYTES);
    EXPECT_EQ(disk.volume().id, "7");
    ASSERT_EQ(disk.paths().size(), 1U);
    EXPECT_EQ(disk.paths()[0].state, "running");
    seam.hasNoDescriptors = true;
    EXPECT_THAT(failure([&] { disk.paths(); }), HasSubstr("state cannot be read: Too many open files"));
    seam.hasNoDescriptors = false;
    remove("sdc");
    EXPECT_EQ(disk.paths()[0].state, "gone");
    disk.keep();
}

TEST_F(ALocalDisk, MayBeASnapshotWhichIsReadOnly)
{
    const auto find = [&] {
        return LocalDisk::find(*manager, StorageObject::snapshot("7"), SHOWN_TO, options);
    };
    lun = R"({"ID":"7","WWN":")" + std::string(WWN) + R"(","USERCAPACITY":")" + std::to_string(BYTES / 512) +
          "\"}";
    KernelDisk disk;
    disk.isReadOnly = true;
    add(disk);
    LocalDisk alone = find();
    EXPECT_EQ(alone.path(), "/dev/sdc");
    EXPECT_EQ(alone.size(), BYTES);
    alone.keep();

    disk.name = "sdaa";
    disk.address = "1:0:1:1";
    add(disk);
    KernelMap map;
    map.paths = {"sdc", "sdaa"};
    map.isReadOnly = true;
    add(map);
    LocalDisk mapped = find();
    EXPECT_EQ(mapped.path(), "/dev/dm-3");
    mapped.keep();
    for (const std::string readOnly : {"sdc", "sdaa"}) {
        for (const std::string path : {"sdc", "sdaa"}) {
            seam.write("/sys/block/" + path + "/ro", path == readOnly ? "1\n" : "0\n");
        }
        EXPECT_THAT(failure(find), HasSubstr("/dev/" + readOnly + " is read-only"))
            << "only one of its paths is";
    }
}

TEST_F(ALocalDisk, OfWhichTheArrayTellsNoSizeHasThatOfItsPaths)
{
    add(KernelDisk());
    for (const std::string most : {"", R"(,"CAPACITY":"18446744073709551615","SECTORSIZE":"512")",
                                   R"(,"USERCAPACITY":"18446744073709551615")"}) {
        lun = R"({"ID":"7","WWN":")" + std::string(WWN) + '"' + most + '}';
        LocalDisk disk = found();
        EXPECT_EQ(disk.size(), BYTES) << most;
        disk.keep();
        LocalDisk snapshot = LocalDisk::find(*manager, StorageObject::snapshot("7"), SHOWN_TO, options);
        EXPECT_EQ(snapshot.size(), BYTES) << most;
        snapshot.keep();
    }
}

TEST_F(ALocalDisk, IsReleasedWhenAnotherIsMovedToItsObject)
{
    add(KernelDisk());
    LocalDisk disk = attached();
    disk = found();
    EXPECT_FALSE(isThere());
    disk.keep();
}

TEST_F(ALocalDisk, ThatCannotBeReleasedAtTheEndOfItsObjectIsLogged)
{
    add(KernelDisk());
    {
        const LocalDisk disk = attached();
        seam.files["/proc/self/mountinfo"] += "40 22 8:0 / /data rw shared:9 - xfs /dev/sdc rw\n";
    }
    EXPECT_TRUE(isThere());
    EXPECT_THAT(platform.lines("error: LUN 7 was not released: "),
                ElementsAre(HasSubstr("it is in use: sdc is mounted on /data; nothing was changed")));
}

TEST_F(ALocalDisk, OfAnObjectWhoseWwnIsNoneIsRefused)
{
    lun = R"({"ID":"7","WWN":"6001; reboot"})";
    EXPECT_THAT(failure([&] { attached(); }),
                HasSubstr("its WWN [6001; reboot] cannot be one of a disk; look at the object on the array"));
}

TEST_F(ALocalDisk, IsFoundThroughAnFcPort)
{
    seam.write("/sys/class/fc_host/host2/port_name", "0x21000024ff000001\n");
    seam.write("/sys/class/fc_host/host2/port_state", "Online\n");
    platform.replyWith([this](const SentRequest& request) {
        return request.path == "/lun/7"                       ? Reply::object(lun)
               : request.path.rfind("/lun/associate", 0) == 0 ? Reply::list("[" + lun + "]")
               : request.path.rfind("/fc_initiator/", 0) == 0
                   ? Reply::object(R"({"ID":"21000024ff000001","PARENTID":"3"})")
                   : Reply::ok();
    });
    KernelDisk disk;
    disk.address = "2:0:0:1";
    add(disk);
    const HostInitiator port = HostInitiator::fc("21:00:00:24:ff:00:00:01");
    LocalDisk found = LocalDisk::find(*manager, StorageObject::lun("7"), port, options);
    EXPECT_EQ(found.path(), "/dev/sdc");
    found.keep();
    seam.write("/sys/class/fc_host/host2/port_state", "Linkdown\n");
    EXPECT_THAT(failure([&] { LocalDisk::attach(*manager, StorageObject::lun("7"), port, options); }),
                HasSubstr("this host has no FC port 21:00:00:24:ff:00:00:01 that is online: host2 with port "
                          "21000024ff000001 is Linkdown"));
}
