#include "Round.h"

#include "Faults.h"
#include "StubHost.h"

#include <tessel/Audit.h>
#include <tessel/Failure.h>
#include <tessel/Handlers.h>
#include <tessel/LocalDisk.h>
#include <tessel/Observer.h>
#include <tessel/Tessel.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <unistd.h>

using namespace ovra::tessel;

namespace torture {
namespace {

constexpr std::uint64_t BYTES = 1U << 20U;
constexpr const char* FOUND = "/dev/disk/by-id/../../sdc";

class Round
{
public:
    Round(const Target& target, Seen& seen) : m_target(target), m_seen(seen) {}

    void run()
    {
        std::shared_ptr<Observer> audit;
        attempt("auditFile", [&] {
            audit = auditFile();
            addObserver(audit);
        });
        attempt("getInstance", [&] { m_manager = CDeviceManager::getInstance(2, 1000); });
        if (m_manager != nullptr) {
            inSession();
            attempt("releaseInstance", [&] { CDeviceManager::releaseInstance(m_manager); });
        }
        if (audit && !attempt("removeObserver", [&] { removeObserver(audit); })) {
            const Aside aside;
            removeObserver(audit);
        }
    }

private:
    /** Whether a step was done; what it throws is looked at. */
    template <class Step>
    bool attempt(const char* name, const Step& step)
    {
        try {
            step();
            return true;
        } catch (const OvraAPIException& error) {
            failure(name, error.what());
        } catch (const std::bad_alloc& error) {
            failure(name, error.what());
        } catch (const std::exception& error) {
            problem(name, error.what());
        } catch (...) {
            problem(name, "what is thrown is no exception");
        }
        return false;
    }

    /** The same for a call that never throws. */
    template <class Call>
    bool quietly(const char* name, const Call& call)
    {
        try {
            const bool isDone = call();
            if (!isDone) {
                failure(name, "says no");
            }
            return isDone;
        } catch (...) {
            problem(name, "throws, where it never does");
        }
        return false;
    }

    void expect(bool holds, const char* name, const char* what)
    {
        if (!holds) {
            problem(name, what);
        }
    }

    /** One that is told as it should. */
    void failure(const char* name, const char* what)
    {
        if (m_seen.failures++ == 0) {
            snprintf(m_seen.firstFailure, sizeof(m_seen.firstFailure), "%s: %s", name, what);
        }
    }

    void problem(const char* name, const char* what)
    {
        const Aside aside;
        ++m_seen.problems;
        dprintf(STDERR_FILENO, "%s: %s\n", name, what);
    }

    void inSession()
    {
        const auto login = [&] {
            return m_manager->loginDevice(m_target.ip, m_target.port, m_target.user, m_target.password,
                                          USERTYPE_LOCAL);
        };
        if (!quietly("loginDevice", login)) {
            const Aside aside;
            m_seen.isSessionKnown = m_seen.isSessionKnown && !lastFailure().mayBeDone;
            return;
        }
        quietly("keepAlive", [&] { return m_manager->keepAlive(); });
        attempt("createLun", [&] { makeLun(); });
        if (!m_lun.ID.empty()) {
            byOperations();
            asLocalDisk();
        }
        if (!quietly("logoutDevice", [&] { return m_manager->logoutDevice(); })) {
            const Aside aside; // the session is open still: what a program does then
            m_manager->logoutDevice();
        }
    }

    void makeLun()
    {
        static unsigned number = 0;
        LunMO wanted;
        wanted.NAME = "torture " + std::to_string(getpid()) + " " + std::to_string(++number);
        wanted.PARENTID = "0";
        wanted.CAPACITY = BYTES;
        m_lun = handlerOf<CLunHandler>(*m_manager).createLun(wanted);
        expect(m_lun.NAME == wanted.NAME && !m_lun.WWN.empty(), "createLun", "another LUN was made");
        bringDisk(m_lun.WWN, m_lun.ID, BYTES);
    }

    void byOperations()
    {
        attempt("getLun", [&] {
            const LunMO read = handlerOf<CLunHandler>(*m_manager).getLun(m_lun.ID);
            expect(read.ID == m_lun.ID && read.WWN == m_lun.WWN && read.NAME == m_lun.NAME, "getLun",
                   "another LUN was read");
        });
        const bool isAttached = attempt("attachLunToHost", [&] {
            expect(
                handlerOf<CDiskAttachHandler>(*m_manager).attachLunToHost(m_lun.ID, INITIATOR, "192.0.2.9") ==
                    0,
                "attachLunToHost", "it says that the LUN was attached before");
        });
        if (isAttached) {
            attempt("getLunByHost", [&] { lookAtHost(); });
        }
        attempt("scanLunAfterAttach", [&] {
            const std::string path = handlerOf<CDiskScannerHandler>(*m_manager).scanLunAfterAttach(m_lun.ID);
            if (path.empty()) {
                failure("scanLunAfterAttach", "finds nothing");
            }
            expect(path.empty() || path == FOUND, "scanLunAfterAttach", path.c_str());
        });
        attempt("scanLunBeforeDetach",
                [&] { handlerOf<CDiskScannerHandler>(*m_manager).scanLunBeforeDetach(m_lun.ID); });
        attempt("detachLunFromHost",
                [&] { handlerOf<CDiskAttachHandler>(*m_manager).detachLunFromHost(m_lun.ID, INITIATOR); });
    }

    void lookAtHost()
    {
        const std::string host =
            handlerOf<CIscsiInitiatorHandler>(*m_manager).getIscsiInitiator(INITIATOR).PARENTID;
        LunQuery all;
        const std::vector<LunMO> luns = handlerOf<CLunHandler>(*m_manager).getLunByHost(host, all);
        // Beside it those of rounds that were spoilt may be there.
        const bool isShown =
            std::any_of(luns.begin(), luns.end(), [&](const LunMO& lun) { return lun.ID == m_lun.ID; });
        if (!isShown) { // a view that cannot be filled is taken away, and the attach goes on
            failure("getLunByHost", "the LUN is not shown");
        }
    }

    void asLocalDisk()
    {
        LocalDiskOptions options;
        options.findSeconds = 2;
        options.mapSeconds = 2;
        options.stepSeconds = 2;
        options.lockSeconds = 2;
        options.flushSeconds = 2;
        std::unique_ptr<LocalDisk> disk;
        attempt("LocalDisk::attach", [&] {
            disk = std::make_unique<LocalDisk>(LocalDisk::attach(*m_manager, StorageObject::lun(m_lun.ID),
                                                                 HostInitiator::iscsi(INITIATOR), options));
        });
        if (!disk) {
            return;
        }
        attempt("LocalDisk::path", [&] {
            expect(disk->path() == "/dev/sdc" && disk->size() == BYTES && disk->wwn() == m_lun.WWN,
                   "LocalDisk::attach", disk->path().c_str());
        });
        attempt("LocalDisk::paths", [&] {
            const std::vector<DiskPath> paths = disk->paths();
            expect(paths.size() == 1 && paths[0].state == "running", "LocalDisk::paths", "another state");
        });
        attempt("LocalDisk::verify", [&] { disk->verify(); });
        if (attempt("LocalDisk::release", [&] { disk->release(); })) { // else its destructor tries it again
            expect(!isDiskThere(), "LocalDisk::release", "the disk is there still");
        }
    }

    const Target& m_target;
    Seen& m_seen;
    CDeviceManager* m_manager = nullptr;
    LunMO m_lun;
};

} // namespace

Seen runRound(const Target& target)
{
    letTimePass(1000000000); // the names that an attach makes are those of its second
    Seen seen;
    Round(target, seen).run();
    return seen;
}

} // namespace torture
