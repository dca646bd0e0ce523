#include "export/IscsiExport.h"

#include "base/Text.h"
#include "export/DataCopy.h"
#include "model/Record.h"
#include "types/Common.h"

#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

namespace arraysim {
namespace {

uintmax_t capacity(const Object& object)
{
    const char* const key = object.values.count("CAPACITY") != 0 ? "CAPACITY" : "USERCAPACITY";
    return decimal(object.value(key)).value_or(0) * SECTOR_SIZE;
}

std::set<std::string> diskNames(World& world)
{
    const auto lock = world.lock();
    std::set<std::string> names;
    for (const Type type : {Type::LUN, Type::SNAPSHOT}) {
        for (const auto& entry : world.all(type)) {
            names.insert(diskName({type, entry.first}));
        }
    }
    return names;
}

} // namespace

IscsiExport::IscsiExport(World& world, Journal& journal, ConfigFs& config, const std::string& iqn,
                         const DiskFiles::Path& files)
    : m_world(world), m_journal(journal), m_prefix(KernelTarget::FAMILY + world.deviceId() + "_"),
      m_files(files, [names = diskNames(world)](const std::string& name) { return names.count(name) != 0; }),
      m_target(config, iqn, m_prefix), m_watch(world, *this)
{
    const auto lock = m_world.lock();
    reconcile();
    m_world.observe(this);
}

IscsiExport::~IscsiExport()
{
    m_world.ignore(this);
}

void IscsiExport::reconcile()
{
    std::map<std::string, std::pair<StoreFacts, std::set<std::string>>> wanted;
    for (const Type type : {Type::LUN, Type::SNAPSHOT}) {
        for (const auto& entry : m_world.all(type)) {
            const ObjectKey disk(type, entry.first);
            for (const ObjectKey& initiator : exposedInitiators(m_world, disk)) {
                if (initiator.first == Type::ISCSI_INITIATOR) {
                    tryTo("provide " + diskName(disk), [&] {
                        auto& [facts, initiators] = wanted[storeName(disk)];
                        facts = provided(disk);
                        initiators.insert(initiator.second);
                    });
                }
            }
        }
    }
    for (const auto& failure : m_target.reconcile(wanted)) {
        m_journal.note("cannot take away " + failure);
    }
    for (const auto& entry : wanted) {
        for (const auto& initiator : entry.second.second) {
            tryTo("map " + entry.first + " for " + initiator,
                  [&] { m_target.map(entry.second.first, initiator); });
        }
    }
}

void IscsiExport::exposureChanged(const ObjectKey& lunOrSnapshot, const ObjectKey& initiator, bool)
{
    if (initiator.first == Type::ISCSI_INITIATOR) {
        m_world.afterwards([this, lunOrSnapshot, name = initiator.second] { settle(lunOrSnapshot, name); });
    }
}

void IscsiExport::linkChanges(const ObjectKey& owner, const ObjectKey& member)
{
    for (const ObjectKey& object : {owner, member}) {
        const bool isSnapshot =
            object.first == Type::SNAPSHOT && (owner.first == Type::LUN || member.first == Type::LUN);
        const bool isLun = object.first == Type::LUN &&
                           (owner.first == Type::STORAGE_POOL || member.first == Type::STORAGE_POOL);
        if (isSnapshot || isLun) {
            m_touched.insert(object);
        }
    }
}

void IscsiExport::committed()
{
    for (const ObjectKey& disk : std::exchange(m_touched, {})) {
        cameOrWent(disk);
    }
}

void IscsiExport::cameOrWent(const ObjectKey& disk)
{
    // A new disk takes nothing over from one that had its ID before.
    m_world.afterwards(m_files.discard(disk));
    const Object* object = m_world.find(disk.first, disk.second);
    if (object != nullptr && disk.first == Type::SNAPSHOT) {
        const ObjectKey lun(Type::LUN, *m_world.linked(disk, Type::LUN).begin());
        m_world.afterwards(
            m_files.beginCopy(lun, disk, capacity(*object), [this, disk](const std::string& why) {
                m_journal.note("cannot keep the data of " + diskName(disk) + ": " + why);
            }));
    }
}

void IscsiExport::settle(const ObjectKey& disk, const std::string& initiator)
{
    tryTo("show " + diskName(disk) + " to " + initiator + ", or hide it", [&] {
        m_files.awaitCopy(disk);
        const std::lock_guard<std::mutex> turn(m_turn);
        if (const auto store = wanted(disk, initiator)) {
            m_target.map(*store, initiator);
        } else {
            m_target.unmap(storeName(disk), initiator);
        }
    });
}

std::optional<StoreFacts> IscsiExport::wanted(const ObjectKey& disk, const std::string& initiator)
{
    const auto lock = m_world.lock();
    const bool isSeen = m_world.find(disk.first, disk.second) != nullptr &&
                        exposedInitiators(m_world, disk).count({Type::ISCSI_INITIATOR, initiator}) != 0;
    return isSeen ? std::make_optional(provided(disk)) : std::nullopt;
}

StoreFacts IscsiExport::provided(const ObjectKey& disk) const
{
    const Object& object = m_world.at(disk.first, disk.second);
    const fs::path file = m_files.fileOf(disk);
    if (!fs::exists(file)) {
        const bool isLate = disk.first == Type::SNAPSHOT &&
                            fs::exists(m_files.fileOf({Type::LUN, *m_world.linked(disk, Type::LUN).begin()}));
        if (isLate) {
            throw std::runtime_error("its data was not kept when it was made");
        }
        makeSparse(file, capacity(object));
    } else if (fs::file_size(file) < capacity(object)) {
        makeSparse(file, capacity(object));
    }
    const Json::Value shown = record(m_world, objectType(disk.first), object);
    return {storeName(disk), file, shown["WWN"].asString()};
}

void IscsiExport::tryTo(const std::string& what, const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::exception& failure) {
        m_journal.note("cannot " + what + ": " + failure.what());
    }
}

} // namespace arraysim
