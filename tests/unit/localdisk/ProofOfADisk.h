#ifndef LOCALDISK_PROOFOFADISK_H
#define LOCALDISK_PROOFOFADISK_H

#include "KernelDisks.h"

#include "localdisk/Proof.h"
#include "localdisk/Sight.h"

#include <deque>
#include <filesystem>
#include <fstream>
#include <unistd.h>

/** Proves what is found at once; the path, or why there is none. */
class ProofOfADisk : public LocalDiskTest
{
protected:
    std::string proved(ovra::tessel::Sizes sizes = ovra::tessel::Sizes::PROVED)
    {
        std::string path;
        const std::string reason = failure([&] {
            const ovra::tessel::DiskJob wanted = job();
            const ovra::tessel::Sight sight = lookForOurs(wanted, {"1", "2"});
            if (!sight.foreign.empty()) {
                wanted.fail(sight.foreign.front());
            }
            if (sight.ours.empty()) {
                wanted.fail("none");
            }
            handedOut = prove(
                wanted, [&] { return sight.ours; }, sizes);
            path = handedOut.path;
        });
        return reason.empty() ? path : reason;
    }

    void addTwoPaths()
    {
        add(KernelDisk());
        KernelDisk second;
        second.name = "sdaa";
        second.address = "2:0:0:1";
        add(second);
    }
    void addMap(std::vector<std::string> paths)
    {
        KernelMap map;
        map.paths = std::move(paths);
        add(map);
    }
    /** Of two paths. */
    void addSuspendedMap()
    {
        addTwoPaths();
        KernelMap map;
        map.paths = {"sdc", "sdaa"};
        map.isSuspended = true;
        add(map);
    }
    /** What the shell makes of what multipath answers: whether a map is coming, or is not. */
    void claim(std::deque<int> isComing, int isNone = 1, int isKnownToUdev = 0)
    {
        m_folder = std::filesystem::temp_directory_path() / ("proof-" + std::to_string(getpid()));
        std::filesystem::create_directories(m_folder);
        std::ofstream(m_folder / "multipath") << "#!/bin/sh\n";
        std::filesystem::permissions(m_folder / "multipath", std::filesystem::perms::owner_all);
        setenv("PATH", m_folder.c_str(), 1);
        for (const std::string name : {"sdc", "sdaa"}) {
            seam.exits("timeout 5 udevadm wait --initialized=true --timeout=5 /dev/" + name +
                           " >/dev/null 2>&1",
                       {isKnownToUdev});
            const std::string answer =
                "answer=$(timeout 5 multipath -u /dev/" + name + " 2>/dev/null); case $?$answer in ";
            seam.exits(answer + "0*=?1?) exit 0;; esac; exit 1", isComing);
            seam.exits(answer + "0*=?0?|1|1D*) exit 0;; esac; exit 1", {isNone});
        }
    }
    ~ProofOfADisk() override { std::filesystem::remove_all(m_folder); }

    std::filesystem::path m_folder;
    ovra::tessel::ProvedDisk handedOut;
};

#endif
