#include "export/IscsiExport.h"

#include "base/Text.h"
#include "model/Record.h"
#include "types/Common.h"

#include <fstream>

namespace fs = std::filesystem;

namespace arraysim {
namespace {

std::string storeName(const ObjectKey& object)
{
    return (object.first == Type::LUN ? "lun_" : "snapshot_") + object.second;
}

uintmax_t capacity(const Object& object)
{
    const char* const key = object.values.count("CAPACITY") != 0 ? "CAPACITY" : "USERCAPACITY";
    return decimal(object.value(key)).value_or(0) * SECTOR_SIZE;
}

} // namespace

IscsiExport::IscsiExport(World& world, Journal& journal, const std::string& iqn, fs::path files)
    : m_world(world), m_journal(journal), m_target(iqn), m_files(std::move(files)), m_watch(world, *this)
{
    fs::create_directories(m_files);
    const auto lock = m_world.lock();
    for (const Type type : {Type::LUN, Type::SNAPSHOT}) {
        for (const auto& [id, object] : m_world.all(type)) {
            for (const ObjectKey& initiator : exposedInitiators(m_world, {type, id})) {
                IscsiExport::exposureChanged({type, id}, initiator, true);
            }
        }
    }
    m_world.observe(this);
}

IscsiExport::~IscsiExport()
{
    m_world.ignore(this);
}

void IscsiExport::exposureChanged(const ObjectKey& lunOrSnapshot, const ObjectKey& initiator, bool appeared)
{
    if (initiator.first != Type::ISCSI_INITIATOR) {
        return;
    }
    tryTo((appeared ? "map " : "unmap ") + storeName(lunOrSnapshot) + " for " + initiator.second, [&] {
        if (appeared) {
            m_target.map(provided(lunOrSnapshot), initiator.second);
        } else {
            m_target.unmap(storeName(lunOrSnapshot), initiator.second);
        }
    });
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
    const std::set<ObjectKey> touched = std::move(m_touched);
    m_touched.clear();
    for (const ObjectKey& object : touched) {
        tryTo("keep the data of " + storeName(object), [&] {
            if (m_world.find(object.first, object.second) == nullptr) {
                fs::remove(fileOf(object));
            } else if (object.first == Type::SNAPSHOT) {
                provided(object);
            }
        });
    }
}

fs::path IscsiExport::fileOf(const ObjectKey& object) const
{
    return m_files / storeName(object);
}

StoreFacts IscsiExport::provided(const ObjectKey& object) const
{
    const Object& known = m_world.at(object.first, object.second);
    const fs::path file = fileOf(object);
    if (!fs::exists(file)) {
        if (object.first == Type::SNAPSHOT) {
            const fs::path source = fileOf({Type::LUN, *m_world.linked(object, Type::LUN).begin()});
            if (fs::exists(source)) {
                fs::copy_file(source, file);
            }
        }
        std::ofstream(file, std::ios::app).close();
        fs::resize_file(file, capacity(known));
    }
    const Json::Value shown = record(m_world, objectType(object.first), known);
    return {storeName(object), file, shown["WWN"].asString()};
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
