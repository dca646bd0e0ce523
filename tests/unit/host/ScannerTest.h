#ifndef HOST_SCANNERTEST_H
#define HOST_SCANNERTEST_H

#include "host/DiskScannerHandlerImpl.h"
#include "session/DeviceManagerImpl.h"
#include "support/HostSeam.h"
#include "support/RecordingPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

using namespace ovra::tessel;

// Commands as the host sees them.
inline const char* const WHICH = "which kxRescan >/dev/null 2>&1";
inline const char* const KORVEX = "timeout 1800 kxRescan 2>/dev/null";
inline const char* const SCRIPT = "rescan-scsi-bus.sh -r >/dev/null 2>&1";
inline const char* const TMP_BLOCK = "lsscsi | grep tmp-block";
inline const char* const BY_ID = "ls -al /dev/disk/by-id|grep -v part";
inline const char* const LSSCSI_COMMAND = "lsscsi";
inline const char* const MULTIPATH = "multipath -ll";
inline const char* const LINE = "=========================================\n";

/** A disk of the array: LUN 7 and its WWN, whose last four bytes are the LUN ID. */
inline const char* const WWN = "600a0b8000f1c1d2aabbccdd00000007";
inline const char* const OTHER_WWN = "600a0b8000f1c1d2aabbccdd00000008";

inline std::string fastListing(const std::string& wwn = WWN)
{
    return " ls -al /dev/disk/by-id | grep " + wwn + " | grep -v part | grep scsi-";
}

/** A line of ls -al /dev/disk/by-id. */
inline std::string byIdLine(const std::string& name, const std::string& device)
{
    return "lrwxrwxrwx 1 root root    9 May  1 10:20 " + name + " -> ../../" + device + "\n";
}

/** A line of lsscsi. */
inline std::string scsi(const std::string& address, const std::string& device)
{
    return "[" + address + "]    disk    OVRA     TESSEL           0001  /dev/" + device + " \n";
}

/** The journal's lines but those that begin with one of these. */
inline std::vector<std::string> journalWithout(std::initializer_list<const char*> prefixes)
{
    std::vector<std::string> lines;
    for (const std::string& line : RecordingPlatform::get().journal()) {
        bool wanted = true;
        for (const std::string prefix : prefixes) {
            wanted = wanted && line.compare(0, prefix.size(), prefix) != 0;
        }
        if (wanted) {
            lines.push_back(line);
        }
    }
    return lines;
}

/** The commands that the host ran, without the listings. */
inline std::vector<std::string> commands()
{
    std::vector<std::string> found;
    for (const std::string& line : RecordingPlatform::get().lines("system: ")) {
        found.push_back(line.substr(std::string("system: ").size()));
    }
    return found;
}

inline size_t count(const std::string& line)
{
    const std::vector<std::string> journal = RecordingPlatform::get().journal();
    return static_cast<size_t>(std::count(journal.begin(), journal.end(), line));
}

/** A scanner on a scripted host, with the process-wide state as it is at load time but set up. */
class ScannerTest : public testing::Test
{
protected:
    ScannerTest()
    {
        RecordingPlatform::get().reset();
        RecordingPlatform::get().replyWith([this](const SentRequest& request) {
            return request.path == "/lun/7" || request.path == "/SNAPSHOT/7"
                       ? Reply::object(R"({"ID":"7","WWN":")" + wwn + R"("})")
                       : Reply::ok();
        });
        setenv("PATH", "/nonexistent", 1); // the rescan script of this machine does not matter
        g_scannerInitialised = 1;
        g_korvexInstalled = false;
        g_scanState = KX_RESCAN_NEVER;
        seam.semaphoreId = 41;
        seam.nextSemaphoreId = 41; // the first scanner of the process has made a lock
        seam.semaphoreValue = 1;
        seam.exits(KORVEX, {0});
    }

    RecordingPlatform& platform = RecordingPlatform::get();
    std::string wwn = WWN; ///< what the array says
    HostSeam seam;
    CDeviceManagerImpl manager;
    CDiskScannerHandlerImpl scanner{&manager};
    std::string id = "7";
};

#endif
