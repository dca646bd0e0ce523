#include "localdisk/HeldDisk.h"
#include "localdisk/Release.h"
#include "session/Log.h"

#include <utility>

namespace ovra::tessel {

struct LocalDisk::State : HeldDisk
{
    using HeldDisk::HeldDisk;
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
    return whole([this] {
        std::vector<DiskPath> paths;
        for (const std::string& name : m_state->proved.disks) {
            const std::optional<disk::ScsiDisk> disk = disk::scsiDisk(name);
            paths.push_back(disk ? DiskPath{"/dev/" + name, disk->address, disk->state}
                                 : DiskPath{"/dev/" + name, "", "gone"});
        }
        return paths;
    });
}

void LocalDisk::verify() const
{
    m_state->told("LocalDisk::verify", [this](Observation&) {
        State now = *m_state;
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

} // namespace ovra::tessel
