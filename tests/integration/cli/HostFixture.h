#ifndef CLI_HOSTFIXTURE_H
#define CLI_HOSTFIXTURE_H

#include "Cli.h"

#include <filesystem>
#include <sched.h>
#include <string>
#include <unistd.h>

/**
 * A host made of files and of stubs in place of its tools; semaphores are those of a namespace of its own.
 */
class HostTest : public MappingTest
{
protected:
    HostTest()
    {
        cli.environment["TESSELCTL_ROOT"] = folder.path();
        folder.write("proc/self/mountinfo", "25 1 8:2 / / rw - ext4 /dev/sda2 rw\n");
        folder.write("proc/swaps", "Filename Type Size Used Priority\n");
        folder.write("etc/iscsi/initiatorname.iscsi", "InitiatorName=" + iqn + "\n");
        folder.write("dev/disk/by-id/scsi-3600", "");
        wwn = cli.json({"lun", "show", lun}).json()["WWN"].asString();
        addDisk("sda", "8:0", "naa.6000000000000001");
        for (const char* tool : {"sh", "ls", "grep", "which", "timeout", "rm", "multipath"}) {
            const std::string real = std::string("/bin/") + tool;
            std::filesystem::create_directories(folder.path() + "/bin");
            std::filesystem::create_symlink(std::filesystem::exists(real) ? real : "/bin/true",
                                            folder.path() + "/bin/" + tool);
        }
        stub("lsscsi", "exit 0");
        stub("sg_inq", "echo PDT=0");
        stub("rescan-scsi-bus.sh",
             "grep PDT= Device_type= # stub\necho \"$@\" >>" + folder.path() + "/rescans");
        cli.environment["PATH"] = folder.path() + "/bin";
        cli.prepare = [] {
            if (unshare(CLONE_NEWIPC) != 0) {
                _exit(126);
            }
        };
    }

    void SetUp() override
    {
        if (cli.run({"--version"}).exitCode == 126) {
            GTEST_SKIP() << "no rights to make an IPC namespace";
        }
    }

    void stub(const std::string& name, const std::string& script) const
    {
        folder.write("bin/" + name, "#!/bin/sh\n" + script + "\n", 0755);
    }
    void addDisk(const std::string& name, const std::string& device, const std::string& wwid) const
    {
        folder.write("sys/block/" + name + "/dev", device + "\n");
        folder.write("sys/block/" + name + "/device/wwid", wwid + "\n");
    }
    /** The LUN's disk sdc with one partition; its identity is that of page 0x83. */
    void addLunDisk() const
    {
        addDisk("sdc", "8:32", "t10.OTHER");
        std::string page("\x00\x83\x00\x14\x01\x03\x00\x10", 8);
        for (size_t i = 0; i < wwn.size(); i += 2) {
            page += static_cast<char>(std::stoi(wwn.substr(i, 2), nullptr, 16));
        }
        folder.write("sys/block/sdc/device/vpd_pg83", page);
        folder.write("sys/block/sdc/sdc1/dev", "8:33\n");
        folder.write("sys/block/sdc/sdc1/partition", "1\n");
        // The kernel's part: a deleted device is gone from sysfs.
        stub("lsscsi", "rm -rf " + folder.path() + "/sys/block/sdc");
    }
    bool diskIsThere() const { return std::filesystem::exists(folder.path() + "/sys/block/sdc"); }

    Folder folder;
    std::string wwn;
};

#endif
