#ifndef LOCALDISK_KERNELDISKS_H
#define LOCALDISK_KERNELDISKS_H

#include "localdisk/DiskJob.h"
#include "localdisk/Ways.h"
#include "support/HostSeam.h"
#include "support/RecordingPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

inline const char* const WWN = "600a0b8000f1c1d2aabbccdd00000007"; ///< of LUN 7
inline const char* const OTHER_WWN = "600a0b8000f1c1d2aabbccdd00000008";
constexpr std::uint64_t MIB = 1U << 20U;
constexpr std::uint64_t BYTES = 64 * MIB; ///< of LUN 7

/** A disk as the kernel shows it, and what it answers. */
struct KernelDisk
{
    std::string name = "sdc";
    std::string address = "1:0:0:1";
    std::string known = WWN; ///< what the kernel read when it found the disk; empty: nothing
    std::string now = WWN;   ///< what the disk answers; empty: it does not
    std::string state = "running";
    std::uint64_t bytes = BYTES;
    bool isReadOnly = false;
};

/** A multipath map. */
struct KernelMap
{
    std::string node = "dm-3";
    std::string wwid = std::string("3") + WWN;
    std::vector<std::string> paths;
    std::uint64_t bytes = BYTES;
    bool isSuspended = false;
    bool isReadOnly = false;
};

/** LUN 7 on an array, and a host whose /sys is written as the kernel writes it. */
class LocalDiskTest : public testing::Test
{
protected:
    LocalDiskTest();
    ~LocalDiskTest() override;

    void add(const KernelDisk& disk);
    void add(const KernelMap& map);
    /** A healthy disk of somebody else. */
    void addForeign(const std::string& name = "sdd", const std::string& address = "1:0:0:2");
    void remove(const std::string& disk);
    void addSession(const std::string& host, const std::string& state = "LOGGED_IN");
    /** What the kernel does when it is written to: a deleted disk goes; more, when a test says so. */
    virtual void kernel();

    ovra::tessel::DiskJob job();
    std::string written(const std::string& file); ///< what stands in a file of /sys
    std::vector<std::string> commands();
    /** What the steps throw; empty when nothing. */
    template <class Steps>
    std::string failure(const Steps& steps)
    {
        try {
            steps();
            return "";
        } catch (const OvraAPIException& error) {
            return error.what();
        }
    }

    RecordingPlatform& platform = RecordingPlatform::get();
    HostSeam seam;
    CDeviceManager* const manager;
    ovra::tessel::LocalDiskOptions options;
    ovra::tessel::Ways ways{{"1"}, {"1"}, {}, {}};
    std::string lun; ///< what the array tells of LUN 7
    std::function<void()> onKernel;
};

#endif
