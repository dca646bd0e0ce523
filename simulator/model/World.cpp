#include "model/World.h"

#include "base/Codes.h"
#include "base/Text.h"

#include <algorithm>
#include <random>
#include <utility>

namespace arraysim {
namespace {

constexpr std::size_t MOST_KEPT = 16;

std::string newDeviceId()
{
    std::random_device random;
    std::string id = "21";
    while (id.size() < 20) {
        id += static_cast<char>('0' + random() % 10);
    }
    return id;
}

} // namespace

ListName listName(Type type, const ObjectKey& of)
{
    return {std::to_string(static_cast<int>(type)), std::to_string(static_cast<int>(of.first)), of.second};
}

World::Lock::~Lock()
{
    const auto works = std::exchange(m_world.m_afterwards, {});
    m_held.unlock();
    for (const auto& work : works) {
        work();
    }
}

World::World(Store& store) : m_store(store), m_deviceId(store.setting("deviceId"))
{
    if (m_deviceId.empty()) {
        m_deviceId = newDeviceId();
        m_store.putSetting("deviceId", m_deviceId);
        reset();
    } else {
        load();
    }
}

const Object* World::find(Type type, const std::string& id) const
{
    const ObjectMap& objects = all(type);
    const auto found = objects.find(id);
    return found == objects.end() ? nullptr : &found->second;
}

const Object& World::at(Type type, const std::string& id) const
{
    if (const Object* object = find(type, id)) {
        return *object;
    }
    throw ArrayError(Code::OBJECT_MISSING,
                     "The " + objectType(type).title + " " + printable(id) + " does not exist.");
}

const ObjectMap& World::all(Type type) const
{
    static const ObjectMap none;
    const auto found = m_objects.find(type);
    return found == m_objects.end() ? none : found->second;
}

IdList World::ids(Type type) const
{
    IdList& kept = m_ids[type];
    if (!kept) {
        std::vector<std::string> list;
        list.reserve(all(type).size());
        for (const auto& entry : all(type)) {
            list.push_back(entry.first);
        }
        kept = std::make_shared<const std::vector<std::string>>(std::move(list));
    }
    return kept;
}

const IdSet& World::linked(const ObjectKey& object, Type to) const
{
    static const IdSet none;
    const auto edges = m_edges.find({object.first, to});
    if (edges == m_edges.end()) {
        return none;
    }
    const auto found = edges->second.of.find(object.second);
    return found == edges->second.of.end() ? none : found->second;
}

IdList World::ordered(const ObjectKey& object, Type to) const
{
    const IdSet& neighbours = linked(object, to);
    const auto list = [&] {
        return std::make_shared<const std::vector<std::string>>(neighbours.begin(), neighbours.end());
    };
    if (neighbours.size() < MANY) {
        return list();
    }
    IdList& kept = m_edges.at({object.first, to}).ordered[object.second];
    if (!kept) {
        kept = list();
    }
    return kept;
}

LongList World::kept(const ListName& name) const
{
    const auto found = m_kept.find(name);
    return found == m_kept.end() ? LongList() : found->second;
}

void World::keep(const ListName& name, LongList list) const
{
    if (m_kept.size() >= MOST_KEPT && m_kept.count(name) == 0) {
        m_kept.clear();
    }
    m_kept.insert_or_assign(name, std::move(list));
}

void World::Edges::insert(const std::string& id, const std::string& neighbour)
{
    of[id].insert(neighbour);
    ordered.erase(id);
}

void World::Edges::erase(const std::string& id, const std::string& neighbour)
{
    of[id].erase(neighbour);
    ordered.erase(id);
}

const std::string* World::holder(Type type, const std::string& key, const std::string& value) const
{
    const auto index = m_unique.find({type, key});
    if (index == m_unique.end()) {
        return nullptr;
    }
    const auto found = index->second.find(value);
    return found == index->second.end() ? nullptr : &found->second;
}

std::string World::nextId(Type type) const
{
    const auto last = m_lastId.find(type);
    return std::to_string(last == m_lastId.end() ? 1 : last->second + 1);
}

void World::put(Type type, Object object)
{
    writing();
    m_store.putObject(type, object);
    countUp(type, object.id);
    forgetUnique(type, object.id);
    remember(type, std::move(object));
}

void World::erase(Type type, const std::string& id)
{
    writing();
    const ObjectKey key(type, id);
    for (const ObjectType* other : objectTypes()) {
        const IdSet neighbours = linked(key, other->code);
        for (const auto& neighbour : neighbours) {
            // Which of the two owns the association is the store's business: one of these is there.
            unlink(key, {other->code, neighbour});
            m_store.eraseLink({other->code, neighbour}, key);
        }
    }
    m_store.eraseObject(type, id);
    forget(type, id);
}

void World::link(const ObjectKey& owner, const ObjectKey& member)
{
    writing();
    for (LinkObserver* observer : m_observers) {
        observer->linkChanges(owner, member);
    }
    m_store.putLink(owner, member);
    connect(owner, member);
}

void World::unlink(const ObjectKey& owner, const ObjectKey& member)
{
    writing();
    for (LinkObserver* observer : m_observers) {
        observer->linkChanges(owner, member);
    }
    m_store.eraseLink(owner, member);
    m_edges[{owner.first, member.first}].erase(owner.second, member.second);
    m_edges[{member.first, owner.first}].erase(member.second, owner.second);
}

bool World::stillSettling(Type type, const std::string& id)
{
    Object& object = m_objects.at(type).at(id);
    if (object.unsettledReads == 0) {
        return false;
    }
    --object.unsettledReads;
    return true;
}

void World::writing()
{
    m_kept.clear();
    if (!m_writing) {
        m_store.begin();
        m_writing = true;
    }
}

} // namespace arraysim
