#include "model/Operations.h"

#include "base/Json.h"
#include "base/Text.h"
#include "model/ChangeInput.h"
#include "model/FieldInput.h"

#include <algorithm>
#include <limits>

namespace arraysim {
namespace {

void checkType(const ObjectType& type, const Json::Value& body)
{
    if (body.isMember("TYPE") && requiredNumber(body, "TYPE") != static_cast<int>(type.code)) {
        throw ArrayError(Code::MEMBER_INVALID, "The TYPE of a " + type.title + " is " +
                                                   std::to_string(static_cast<int>(type.code)) + ".");
    }
}

std::string newId(const World& world, const ObjectType& type, const Json::Value& body)
{
    if (type.naming == Naming::COUNTED && !body.isMember("ID")) {
        return world.nextId(type.code);
    }
    std::string id = requiredText(body, "ID");
    if (type.naming == Naming::COUNTED) {
        const auto number = decimal(id);
        if (!number || *number > 0x7fffffff || id != std::to_string(*number)) {
            throw ArrayError(Code::MEMBER_INVALID, "The ID of a " + type.title + " is a decimal number.");
        }
    } else {
        type.checkId(id);
    }
    if (world.find(type.code, id) != nullptr) {
        throw ArrayError(Code::ID_TAKEN, "The " + type.title + " " + id + " exists already.");
    }
    return id;
}

void moveToParent(World& world, const ObjectType& type, const Change& change)
{
    if (!type.parent || change.parentId.empty()) {
        return;
    }
    const Relation& relation = *relationBetween(type.code, type.parent->type);
    if (world.linked({type.code, change.id}, type.parent->type).count(change.parentId) == 0) {
        associate(world, relation, change.parentId, change.id);
    }
}

void requireManaged(const ObjectType& type)
{
    if (!type.callerManaged) {
        throw ArrayError(Code::METHOD_UNSUPPORTED, "A " + type.title + " can only be read.");
    }
}

/** The IDs that a list is made from, before its filter. */
IdList candidates(const World& world, const ObjectType& type, const Selection& selection,
                  const std::optional<AssociatedWith>& of)
{
    const IdList associated =
        of ? related(world, {of->type, world.at(of->type, of->id).id}, type.code) : nullptr;
    for (const auto& [key, value] : selection.filter) {
        const Field* field = type.field(key);
        if (key == "ID" || (field != nullptr && field->isUnique)) {
            const Object* own = key == "ID" ? world.find(type.code, value) : nullptr;
            const std::string* holder = own != nullptr ? &own->id : world.holder(type.code, key, value);
            const bool isCandidate =
                holder != nullptr &&
                (!of || std::binary_search(associated->begin(), associated->end(), *holder, IdLess()));
            return std::make_shared<const std::vector<std::string>>(isCandidate ? 1 : 0,
                                                                    isCandidate ? *holder : std::string());
        }
    }
    return of ? associated : world.ids(type.code);
}

ListName nameOf(const ObjectType& type, const Selection& selection, const std::optional<AssociatedWith>& of)
{
    ListName name = of ? listName(type.code, {of->type, of->id}) : ListName{type.title};
    for (const auto& [key, value] : selection.filter) {
        name.insert(name.end(), {key, value});
    }
    return name;
}

/** The first IDs of a list in order, before it is cut to its range; as many as wanted where there are. */
IdList selected(const World& world, const ObjectType& type, const Selection& selection,
                const std::optional<AssociatedWith>& of, unsigned long long wanted)
{
    const Filter filter(world, type, selection.filter);
    IdList all = candidates(world, type, selection, of);
    if (selection.filter.empty()) {
        return all;
    }
    const ListName name = nameOf(type, selection, of);
    LongList list = world.kept(name);
    if (!list.ids) {
        list.ids = std::make_shared<std::vector<std::string>>();
    }
    for (; list.seen < all->size() && list.ids->size() < wanted; ++list.seen) {
        const std::string& id = (*all)[list.seen];
        if (filter.matches(world.at(type.code, id))) {
            list.ids->push_back(id);
        }
    }
    if (all->size() >= MANY) {
        world.keep(name, list);
    }
    return list.ids;
}

} // namespace

Json::Value createObject(World& world, const ObjectType& type, const Json::Value& body,
                         const Settling& settling)
{
    requireManaged(type);
    checkType(type, body);
    World::Transaction transaction(world);
    Change change{world, nullptr, newId(world, type, body), {}, {}, {}};
    takeFields(change, type, body);
    takeParent(change, type, body);
    checkUnique(change, type);
    if (type.complete) {
        type.complete(change);
    }
    const unsigned reads = settling.reads + (type.code == Type::LUN_GROUP ? settling.lunGroupReads : 0);
    world.put(type.code, {change.id, change.values, reads});
    moveToParent(world, type, change);
    transaction.commit();
    return record(world, type, world.at(type.code, change.id));
}

Json::Value readObject(World& world, const ObjectType& type, const std::string& id)
{
    const Object& object = world.at(type.code, id);
    if (world.stillSettling(type.code, id)) {
        const bool groupCode = type.code == Type::LUN_GROUP && object.unsettledReads >= world.settling.reads;
        throw ArrayError(groupCode ? Code::LUN_GROUP_SETTLING : Code::OBJECT_SETTLING,
                         "The " + type.title + " " + id + " is being set up: try again later.");
    }
    return record(world, type, object);
}

void modifyObject(World& world, const ObjectType& type, const std::string& id, const Json::Value& body)
{
    requireManaged(type);
    checkType(type, body);
    const Object before = world.at(type.code, id);
    if (body.isMember("ID") && requiredText(body, "ID") != id) {
        throw ArrayError(Code::MEMBER_INVALID, "The ID of a " + type.title + " cannot be changed.");
    }
    World::Transaction transaction(world);
    Change change{world, &before, id, {}, before.values, {}};
    takeFields(change, type, body);
    takeParent(change, type, body);
    checkUnique(change, type);
    if (type.complete) {
        type.complete(change);
    }
    world.put(type.code, {id, change.values, before.unsettledReads});
    moveToParent(world, type, change);
    transaction.commit();
}

void adjustObject(World& world, const ObjectType& type, const std::string& id, const Json::Value& body)
{
    const Object before = world.at(type.code, id);
    Object after = before;
    for (const auto& key : body.getMemberNames()) {
        const Field* field = type.field(key);
        if (field == nullptr || field->compute || field->isUnique || field->isSecret || field->isTransient) {
            throw ArrayError(Code::MEMBER_UNKNOWN,
                             "The member \"" + printable(key) + "\" of a " + type.title + " cannot be set.");
        }
        after.values[key] = inputText(*field, body[key]);
    }
    World::Transaction transaction(world);
    if (type.adjusted) {
        type.adjusted(world, before, after);
    }
    world.put(type.code, std::move(after));
    transaction.commit();
}

void deleteObject(World& world, const ObjectType& type, const std::string& id)
{
    requireManaged(type);
    const Object& object = world.at(type.code, id);
    checkDeletable(world, type, object);
    World::Transaction transaction(world);
    if (type.remove) {
        type.remove(world, object);
    }
    world.erase(type.code, id);
    transaction.commit();
}

Json::Value listObjects(const World& world, const ObjectType& type, const Selection& selection,
                        const std::optional<AssociatedWith>& of)
{
    const Range range = selection.range.value_or(Range{0, std::numeric_limits<std::size_t>::max()});
    const IdList found = selected(world, type, selection, of, range.to);
    Json::Value records(Json::arrayValue);
    for (auto i = range.from; i < std::min<unsigned long long>(range.to, found->size()); ++i) {
        records.append(record(world, type, world.at(type.code, (*found)[i])));
    }
    return records;
}

Json::Value countObjects(const World& world, const ObjectType& type, const Selection& selection,
                         const std::optional<AssociatedWith>& of)
{
    Json::Value count(Json::objectValue);
    count["COUNT"] =
        std::to_string(selected(world, type, selection, of, std::numeric_limits<std::size_t>::max())->size());
    return count;
}

} // namespace arraysim
