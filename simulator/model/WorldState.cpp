#include "model/World.h"

#include "base/Text.h"

#include <algorithm>

namespace arraysim {
namespace {

std::string lastIdKey(Type type)
{
    return "lastId." + std::to_string(static_cast<int>(type));
}

} // namespace

void World::reset()
{
    Transaction transaction(*this);
    for (const ObjectType* type : objectTypes()) {
        while (!all(type->code).empty()) {
            erase(type->code, std::string(all(type->code).begin()->first));
        }
    }
    for (const ObjectType* type : objectTypes()) {
        m_lastId[type->code] = 0;
        m_store.putSetting(lastIdKey(type->code), "0");
        if (type->factory) {
            for (auto& object : type->factory()) {
                put(type->code, std::move(object));
            }
        }
    }
    transaction.commit();
}

void World::load()
{
    m_objects.clear();
    m_edges.clear();
    m_unique.clear();
    m_ids.clear();
    m_kept.clear();
    m_lastId.clear();
    m_store.readObjects([this](Type type, Object object) { remember(type, std::move(object)); });
    m_store.readLinks([this](const ObjectKey& owner, const ObjectKey& member) { connect(owner, member); });
    for (const ObjectType* type : objectTypes()) {
        m_lastId[type->code] = decimal(m_store.setting(lastIdKey(type->code))).value_or(0);
    }
}

void World::remember(Type type, Object object)
{
    for (const auto& field : objectType(type).fields) {
        if (field.isUnique && !object.value(field.key).empty()) {
            m_unique[{type, field.key}][object.value(field.key)] = object.id;
        }
    }
    const std::string id = object.id;
    if (m_objects[type].insert_or_assign(id, std::move(object)).second) {
        m_ids.erase(type);
    }
}

void World::forgetUnique(Type type, const std::string& id)
{
    if (const Object* object = find(type, id)) {
        for (const auto& field : objectType(type).fields) {
            if (field.isUnique) {
                m_unique[{type, field.key}].erase(object->value(field.key));
            }
        }
    }
}

void World::forget(Type type, const std::string& id)
{
    forgetUnique(type, id);
    m_objects[type].erase(id);
    m_ids.erase(type);
}

void World::connect(const ObjectKey& a, const ObjectKey& b)
{
    m_edges[{a.first, b.first}].insert(a.second, b.second);
    m_edges[{b.first, a.first}].insert(b.second, a.second);
}

void World::countUp(Type type, const std::string& id)
{
    const auto number = decimal(id);
    if (number && *number > m_lastId[type]) {
        m_lastId[type] = *number;
        m_store.putSetting(lastIdKey(type), id);
    }
}

void World::ignore(LinkObserver* observer)
{
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer), m_observers.end());
}

void World::Transaction::commit()
{
    if (m_world.m_transactions > 1) {
        return;
    }
    if (m_world.m_writing) {
        m_world.m_store.commit();
        m_world.m_writing = false;
    }
    for (LinkObserver* observer : m_world.m_observers) {
        observer->committed();
    }
}

World::Transaction::~Transaction()
{
    if (--m_world.m_transactions > 0 || !m_world.m_writing) {
        return;
    }
    m_world.m_writing = false;
    m_world.m_store.rollback();
    m_world.load();
    for (LinkObserver* observer : m_world.m_observers) {
        observer->rolledBack();
    }
}

} // namespace arraysim
