// The processes of the host that use the SDK.

#include "simulation/Host.h"

#include <tessel/DeviceManager.h>
#include <tessel/DiskAttach.h>
#include <tessel/DiskScanner.h>
#include <tessel/Exception.h>
#include <tessel/LocalDisk.h>
#include <tessel/Tidy.h>

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

using namespace ovra::tessel;

namespace simulation {
namespace {

constexpr unsigned TRIES = 4; ///< of a call that fails

/** A device manager of a process. */
class Manager
{
public:
    Manager() : m_manager(CDeviceManager::getInstance(3, 100000))
    {
        m_manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
    }
    ~Manager() { CDeviceManager::releaseInstance(m_manager); }
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    CDeviceManager& operator*() const { return *m_manager; }
    template <class Handler>
    Handler& handler(HANDLERTYPE type) const
    {
        return static_cast<Handler&>(*m_manager->getHandler(type));
    }

private:
    CDeviceManager* const m_manager;
};

std::string removalOf(const std::string& path)
{
    return "echo 1 > /sys/block/" + path.substr(path.rfind('/') + 1) + "/device/delete";
}

/** One LUN on its way to this host and back. */
class Errands
{
public:
    Errands(Host& host, const std::string& lun, bool isWhole)
        : m_host(host), m_process(host.scheduler.current()), m_lun(lun), m_isWhole(isWhole)
    {
    }

    /** @return its path; empty: it could not be had. */
    std::string find() { return m_isWhole ? findWhole() : findStepByStep(); }
    void release()
    {
        if (m_host.weakness == Weakness::REMOVED_BY_NAME && !m_path.empty()) {
            persist(true, [&] {
                std::system(removalOf(m_path).c_str());
                m_manager.handler<CDiskAttachHandler>(DISKATTACH_HANDLER).detachLunFromHost(m_lun, INITIATOR);
                return true;
            });
        } else if (m_isWhole && m_host.weakness != Weakness::WITHOUT_LOCK) {
            releaseWhole();
        } else {
            releaseStepByStep();
        }
    }

private:
    /** Does a call until it ends well; what it gives. */
    template <class Call>
    bool persist(bool isReleasing, const Call& call)
    {
        for (unsigned i = 0; i < TRIES && !m_process.isKilled; ++i) {
            m_host.judge.begins(m_process,
                                {m_lun, m_isWhole ? Manner::WHOLE : Manner::STEP_BY_STEP, isReleasing});
            bool isWell = false;
            try {
                isWell = call();
            } catch (const OvraAPIException& error) {
                m_host.note(std::string("fails: ") + error.what());
            }
            m_host.judge.ends(m_process, isWell);
            if (isWell) {
                return true;
            }
            sleep(1);
        }
        return false;
    }

    std::string handedOut(const std::string& path)
    {
        m_path = path;
        if (!path.empty()) {
            m_host.note("LUN " + m_lun + " is " + path);
            m_host.judge.handsOut(m_process, path);
        }
        return path;
    }

    std::string findWhole()
    {
        std::string path;
        persist(false, [&] {
            LocalDisk disk =
                LocalDisk::attach(*m_manager, StorageObject::lun(m_lun), HostInitiator::iscsi(INITIATOR));
            path = handedOut(disk.path());
            disk.keep();
            return true;
        });
        return path;
    }

    void releaseWhole()
    {
        persist(true, [&] {
            LocalDisk::release(*m_manager, StorageObject::lun(m_lun), HostInitiator::iscsi(INITIATOR));
            return true;
        });
    }

    std::string findStepByStep()
    {
        std::string path;
        persist(false, [&] {
            m_manager.handler<CDiskAttachHandler>(DISKATTACH_HANDLER)
                .attachLunToHost(m_lun, INITIATOR, "127.0.0.1");
            std::string lun = m_lun;
            path = handedOut(
                m_manager.handler<CDiskScannerHandler>(DISKSCANNER_HANDLER).scanLunAfterAttach(lun));
            return !path.empty();
        });
        return path;
    }

    void releaseStepByStep()
    {
        persist(true, [&] {
            std::string lun = m_lun;
            m_manager.handler<CDiskScannerHandler>(DISKSCANNER_HANDLER).scanLunBeforeDetach(lun);
            m_manager.handler<CDiskAttachHandler>(DISKATTACH_HANDLER).detachLunFromHost(m_lun, INITIATOR);
            return true;
        });
    }

    Host& m_host;
    const Process& m_process;
    const std::string m_lun;
    const bool m_isWhole;
    const Manager m_manager;
    std::string m_path; ///< that was handed out
};

void use(Host& host, const std::string& path, unsigned seconds)
{
    const int fd = open(path.c_str(), O_RDWR | O_CLOEXEC);
    host.write(path.substr(path.rfind('/') + 1));
    sleep(seconds);
    if (fd >= 0) {
        close(fd);
    }
}

} // namespace

void doJobs(Host& host, const std::vector<Job>& jobs)
{
    for (const Job& job : jobs) {
        Errands errands(host, std::to_string(job.lun), job.isWhole);
        const std::string path = errands.find();
        if (!path.empty()) {
            use(host, path, job.useSeconds);
        }
        errands.release();
    }
}

void doTidy(Host& host)
{
    const std::string own = host.array.all("iscsi_initiator")[0]["PARENTID"].asString();
    if (own.empty()) {
        return; // nothing was ever shown to it
    }
    const Process& process = host.scheduler.current();
    host.judge.begins(process, {"", Manner::TIDY, true});
    bool isWell = false;
    try {
        const Manager manager;
        DiskTidyOptions options;
        options.isDryRun = false;
        tidyDisks(*manager, own, options, [&](const DiskTidyFinding& finding) {
            host.note(finding.disk.device + ": " + finding.reason);
            return true;
        });
        isWell = true;
    } catch (const OvraAPIException& error) {
        host.note(std::string("fails: ") + error.what());
    }
    host.judge.ends(process, isWell);
    if (isWell) {
        host.judge.isTidy();
    }
}

void doAgain(Host& host, const Errand& errand)
{
    Errands(host, errand.lun, errand.manner == Manner::WHOLE).release();
}

} // namespace simulation
