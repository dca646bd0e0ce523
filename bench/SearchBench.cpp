// A scan for one LUN among stub devices, beside a listing of them and an INQUIRY of each: rows and curves as
// those of tessel_bench. No device of this machine is touched.
//   search_bench [--short]

#include "Folder.h"
#include "Rounds.h"
#include "host/DiskScannerHandlerImpl.h"
#include "session/DeviceManagerImpl.h"
#include "support/HostSeam.h"
#include "support/RecordingPlatform.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <ovra/log/LogAPI.h>
#include <scsi/sg.h>
#include <set>
#include <stdexcept>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

constexpr const char* PRODUCT = "Ovra-Tessel-API-linux-Cpp";
constexpr unsigned LINES = 4; ///< that a scan writes for each disk
constexpr const char* BY_ID = "ls -al /dev/disk/by-id|grep -v part";
constexpr const char* WANTED = "600a0b8000f1c1d2aabbccdd00000007";
constexpr const char* OTHER = "600a0b8000f1c1d2aabbccdd00000008";

/** sda, sdb ... sdaa ... */
std::string diskName(unsigned number)
{
    std::string letters;
    for (++number; number > 0; number = (number - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('a' + (number - 1) % 26));
    }
    return "sd" + letters;
}

/** A host with so many disks, of which the LUN's is the last that a scan comes to. */
class StubHost
{
public:
    StubHost(unsigned disks, std::chrono::microseconds inquiry)
    {
        setenv("PATH", "/nonexistent", 1); // the rescan script of this machine does not matter
        std::set<std::string> names;       // in their order a scan comes to them: sdaa is before sdb
        for (unsigned i = 0; i < disks; ++i) {
            names.insert(diskName(i));
        }
        std::string listing;
        for (const std::string& name : names) {
            m_names.push_back("/dev/disk/by-id/../../" + name);
            const std::string wwn = name == *names.rbegin() ? WANTED : OTHER;
            m_seam.addDisk(name, wwn);
            listing.append("lrwxrwxrwx 1 root root 9 May  1 10:20 scsi-3").append(wwn);
            listing.append(" -> ../../").append(name).append("\n");
        }
        m_seam.prints(BY_ID, {listing});
        m_seam.semaphoreId = 41;
        m_seam.nextSemaphoreId = 41;
        m_seam.semaphoreValue = 1;
        g_scannerInitialised = 1;
        g_korvexInstalled = false;
        m_seam.onInquiry = [inquiry](const std::string&) {
            if (inquiry.count() > 0) {
                std::this_thread::sleep_for(inquiry);
            }
            return false;
        };
    }

    void search()
    {
        forgetJournal();
        std::string lun = "7";
        if (m_scanner.scanLunAfterAttach(lun) != m_names.back()) {
            throw std::runtime_error("another disk was found");
        }
    }

    /** With so many lines of the log for each disk. */
    void listAndAsk(unsigned lines)
    {
        forgetJournal();
        std::FILE* const listing = popen(BY_ID, "r");
        std::array<char, 1024> line{};
        for (size_t i = 0; std::fgets(line.data(), line.size(), listing) != nullptr; ++i) {
            ask(m_names[i]);
            for (unsigned told = 0; told < lines; ++told) {
                Log_Run_Info(PRODUCT, m_names[i].c_str());
            }
        }
        pclose(listing);
    }

private:
    static void forgetJournal()
    {
        RecordingPlatform::get().reset();
        RecordingPlatform::get().replyWith([](const SentRequest& request) {
            return request.path == "/lun/7"
                       ? Reply::object(R"({"ID":"7","WWN":")" + std::string(WANTED) + R"("})")
                       : Reply::ok();
        });
    }

    static void ask(const std::string& path)
    {
        const int disk = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        std::array<unsigned char, 6> command = {0x12, 1, 0x83, 0, 255, 0};
        std::array<unsigned char, 256> page{};
        std::array<unsigned char, 64> sense{};
        sg_io_hdr request{};
        request.interface_id = 'S';
        request.dxfer_direction = SG_DXFER_FROM_DEV;
        request.cmdp = command.data();
        request.cmd_len = command.size();
        request.dxferp = page.data();
        request.dxfer_len = page.size();
        request.sbp = sense.data();
        request.mx_sb_len = sense.size();
        request.timeout = 5000;
        if (ioctl(disk, SG_IO, &request) != 0 || page[1] != 0x83) {
            throw std::runtime_error("no page of " + path);
        }
        close(disk);
    }

    HostSeam m_seam;
    CDeviceManagerImpl m_manager;
    CDiskScannerHandlerImpl m_scanner{&m_manager};
    std::vector<std::string> m_names;
};

void searchRows(bool isShort)
{
    const tessel_test::Folder logs;
    int level = -1;
    LogInit(PRODUCT, (logs.path() + "/none.ini").c_str(), &level, (logs.path() + "/logs/").c_str());
    for (const unsigned disks : {16U, 128U, 500U, 4096U}) {
        for (const unsigned microseconds : {0U, 100U}) {
            StubHost host(disks, std::chrono::microseconds(microseconds));
            const unsigned rounds = isShort ? 3 : 10;
            const auto listAndAsk = [&] { host.listAndAsk(0); };
            const bench::Rounds beside(
                rounds, [&] { host.search(); }, listAndAsk);
            const std::string each = std::to_string(microseconds) + " us an INQUIRY";
            bench::tellPoint("wall of a search beside listing and asking, " + each, "disks", disks,
                             beside.wall());
            if (disks >= 500) {
                bench::tellRow("search of " + std::to_string(disks) + " disks, " + each +
                                   ", wall against listing and asking",
                               beside.wall(), microseconds == 0 ? 1.5 : 1.05);
                const bench::Rounds ofLines(
                    rounds, [&] { host.listAndAsk(LINES); }, listAndAsk);
                bench::tellRow("the lines of the log alone, " + std::to_string(disks) + " disks, " + each,
                               ofLines.wall(), bench::NO_AIM);
            }
        }
    }
}

} // namespace

int main(int count, char** arguments)
{
    return bench::runGroups({{"search", &searchRows}}, count, arguments);
}
