#include "localdisk/Finding.h"
#include "localdisk/Proof.h"
#include "localdisk/Release.h"
#include "localdisk/Whole.h"
#include "observer/Observation.h"
#include "observer/Steps.h"
#include "session/Log.h"
#include "session/ManagerOptions.h"
#include "storage/DiskKinds.h"

#include <ovra/disk/Names.h>
#include <tessel/DeviceManager.h>
#include <tessel/HostTransaction.h>
#include <tessel/LocalDisk.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace ovra::tessel {
namespace {

/** A call on one disk, whose end the observers are told. */
template <class Steps>
auto told(const char* call, const CDeviceManager& manager, const StorageObject& volume, const Steps& steps)
{
    return observed(call, manager, [&](Observation& seen) {
        seen.names(kinds::of(volume.type), volume.id);
        const OptionsInForce limits(&manager);
        return whole([&] { return steps(seen); });
    });
}

} // namespace

struct LocalDisk::State
{
    State(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
          const LocalDiskOptions& options)
        : job(manager, volume, options), initiator(host)
    {
        job.requireNoKorvex();
    }

    void attach()
    {
        show();
        const Ways ways = waysOf(job, initiator, hostID);
        requireOnline(job, initiator, ways);
        proved = prove(
            job, [&] { return find(ways); }, Sizes::GROWN);
    }

    /** What is there; scans where a way has none. */
    std::vector<disk::ScsiDisk> find(const Ways& ways)
    {
        std::vector<disk::ScsiDisk> ours = lookForOurs(job, ways.all).ours;
        if (ours.size() < ways.online.size()) {
            const HostTransaction transaction(job.options.lockSeconds);
            ours = findDisks(job, ways, [this] { show(); });
        }
        return ours;
    }

    void show() { hostID = ensureVisible(*job.manager, job.volume, initiator, job.options.access).hostID; }

    /** Proves what is there. */
    void look(Sizes sizes)
    {
        hostID = hostID.empty() ? hostOf(job, initiator) : hostID;
        const Ways ways = waysOf(job, initiator, hostID);
        proved = prove(
            job,
            [&] {
                const Sight sight = lookForOurs(job, ways.all);
                if (!sight.foreign.empty()) {
                    job.fail(sight.foreign.front());
                }
                if (sight.ours.empty()) {
                    job.fail("no disk of this host answers as it");
                }
                return sight.ours;
            },
            sizes);
    }

    void tellFound(Observation& seen) const
    {
        seen.names(kinds::HOST, hostID);
        seen.found(proved.path);
        tellStep(HostEvent::FOUND, proved.path);
    }

    template <class Steps>
    void told(const char* call, const Steps& steps) const
    {
        tessel::told(call, *job.manager, job.volume, [&](Observation& seen) {
            seen.names(kinds::INITIATOR, initiator.id);
            seen.names(kinds::HOST, hostID);
            steps(seen);
        });
    }

    DiskJob job;
    HostInitiator initiator;
    std::string hostID;
    ProvedDisk proved;
    bool isHeld = true; ///< the destructor has something to release
};

LocalDisk::LocalDisk(std::unique_ptr<State> state) : m_state(std::move(state)) {}
LocalDisk::LocalDisk(LocalDisk&& other) noexcept = default;

LocalDisk& LocalDisk::operator=(LocalDisk&& other) noexcept
{
    LocalDisk taken(std::move(other));
    std::swap(m_state, taken.m_state);
    return *this;
}

LocalDisk::~LocalDisk()
{
    try {
        if (m_state) {
            release();
        }
    } catch (const std::exception& problem) {
        // By parts: to make its name may need the memory that was lacking.
        COMMLOG(OS_LOG_ERROR, "%s %s was not released: %s",
                withKind(volume().type, [](auto kind) { return kind.NOUN; }), volume().id.c_str(),
                problem.what());
    }
}

LocalDisk LocalDisk::attach(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                            const LocalDiskOptions& options)
{
    return told("LocalDisk::attach", manager, volume, [&](Observation& seen) {
        seen.setChange();
        seen.names(kinds::INITIATOR, host.id);
        auto state = std::make_unique<State>(manager, volume, host, options);
        state->attach();
        state->tellFound(seen);
        return LocalDisk(std::move(state));
    });
}

LocalDisk LocalDisk::find(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                          const LocalDiskOptions& options)
{
    return told("LocalDisk::find", manager, volume, [&](Observation& seen) {
        seen.names(kinds::INITIATOR, host.id);
        auto state = std::make_unique<State>(manager, volume, host, options);
        state->look(Sizes::PROVED);
        state->tellFound(seen);
        return LocalDisk(std::move(state));
    });
}

void LocalDisk::release(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                        const LocalDiskOptions& options, bool evenInUse)
{
    told("LocalDisk::release", manager, volume, [&](Observation& seen) {
        seen.setChange();
        seen.names(kinds::INITIATOR, host.id);
        const State state(manager, volume, host, options);
        releaseDisk(state.job, state.initiator, evenInUse);
    });
}

const std::string& LocalDisk::path() const
{
    return m_state->proved.path;
}
const std::string& LocalDisk::wwn() const
{
    return m_state->job.wwn;
}
std::uint64_t LocalDisk::size() const
{
    return m_state->proved.bytes;
}
const StorageObject& LocalDisk::volume() const
{
    return m_state->job.volume;
}

std::vector<DiskPath> LocalDisk::paths() const
{
    std::vector<DiskPath> paths;
    for (const std::string& name : m_state->proved.disks) {
        const std::optional<disk::ScsiDisk> disk = disk::scsiDisk(name);
        paths.push_back(disk ? DiskPath{"/dev/" + name, disk->address, disk->state}
                             : DiskPath{"/dev/" + name, "", "gone"});
    }
    return paths;
}

void LocalDisk::verify() const
{
    m_state->told("LocalDisk::verify", [this](Observation&) {
        State now = *m_state;
        now.isHeld = false;
        now.job.read();
        now.look(Sizes::PROVED);
        if (now.proved.path != path()) {
            now.job.fail("it is " + now.proved.path + " now, and no longer " + path());
        }
    });
}

void LocalDisk::release(bool evenInUse)
{
    if (m_state->isHeld) {
        m_state->told("LocalDisk::release", [&](Observation& seen) {
            seen.setChange();
            seen.found(path());
            releaseDisk(m_state->job, m_state->initiator, evenInUse);
        });
        m_state->isHeld = false;
    }
}

void LocalDisk::refresh()
{
    m_state->told("LocalDisk::refresh", [this](Observation& seen) {
        seen.setChange();
        m_state->job.read();
        m_state->look(Sizes::GROWN);
    });
}

void LocalDisk::keep() noexcept
{
    m_state->isHeld = false;
}

void verifyDisk(CDeviceManager& manager, const StorageObject& volume, const std::string& device,
                const LocalDiskOptions& options)
{
    told("verifyDisk", manager, volume, [&](Observation& seen) {
        seen.found(device);
        const DiskJob job(manager, volume, options);
        char real[PATH_MAX];
        const std::string node =
            realpath(device.c_str(), real) != nullptr ? disk::lastName(real) : std::string();
        const std::optional<disk::MultipathMap> map = disk::multipathMap(node);
        const std::optional<disk::ScsiDisk> single = disk::scsiDisk(node);
        if (!map && !single) {
            job.fail(device + " is no SCSI disk and no multipath map of this host");
        }
        std::vector<disk::ScsiDisk> paths;
        for (const std::string& name : map ? map->paths : std::vector<std::string>{node}) {
            const std::string foreign = foreignPath(job, name);
            if (!foreign.empty()) {
                job.fail(std::string(device).append(": ").append(foreign));
            }
            const std::optional<disk::ScsiDisk> path = disk::scsiDisk(name);
            if (path && path->isRunning()) {
                paths.push_back(*path);
            }
        }
        if (paths.empty()) {
            job.fail(device + " has no path that works");
        }
        const ProvedDisk proved = prove(
            job, [&] { return paths; }, Sizes::PROVED);
        if (single && !single->map.empty()) {
            job.fail(device + " is one path of " + proved.path + ": use that");
        }
    });
}

} // namespace ovra::tessel
