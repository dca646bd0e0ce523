#include "model/Associations.h"

#include "base/Text.h"

#include <algorithm>
#include <deque>

namespace arraysim {
namespace {

std::string described(Type type, const std::string& id)
{
    return objectType(type).title + " " + printable(id);
}

/** The types on the shortest way between two types, both included; empty where there is none. */
std::vector<Type> findChain(Type from, Type to)
{
    std::map<Type, Type> cameFrom{{from, from}};
    std::deque<Type> open{from};
    while (!open.empty() && cameFrom.count(to) == 0) {
        const Type here = open.front();
        open.pop_front();
        for (const auto& relation : relations()) {
            if (relation.owner == here || relation.member == here) {
                const Type next = relation.owner == here ? relation.member : relation.owner;
                if (cameFrom.emplace(next, here).second) {
                    open.push_back(next);
                }
            }
        }
    }
    std::vector<Type> chain;
    if (cameFrom.count(to) != 0) {
        for (Type at = to; at != from; at = cameFrom.at(at)) {
            chain.push_back(at);
        }
        chain.push_back(from);
    }
    std::reverse(chain.begin(), chain.end());
    return chain;
}

const std::vector<Type>& chainBetween(Type from, Type to)
{
    static const auto chains = [] {
        std::map<std::pair<Type, Type>, std::vector<Type>> all;
        for (const ObjectType* a : objectTypes()) {
            for (const ObjectType* b : objectTypes()) {
                all[{a->code, b->code}] = findChain(a->code, b->code);
            }
        }
        return all;
    }();
    return chains.at({from, to});
}

/** The neighbours of any of these objects. */
IdSet united(const World& world, Type type, const IdSet& objects, Type to)
{
    IdSet all;
    for (const auto& id : objects) {
        const IdSet& neighbours = world.linked({type, id}, to);
        all.insert(neighbours.begin(), neighbours.end());
    }
    return all;
}

} // namespace

const std::vector<Relation>& relations()
{
    using T = Type;
    static const AssociationRoute intoLunGroup{"POST", "lungroup", "associate"};
    static const AssociationRoute outOfLunGroup{"DELETE", "lungroup", "associate"};
    static const AssociationRoute intoHostGroup{"POST", "hostgroup", "associate"};
    static const AssociationRoute outOfHostGroup{"DELETE", "host", "associate"};
    static const AssociationRoute intoView{"PUT", "mappingview", "create_associate"};
    static const AssociationRoute outOfView{"PUT", "mappingview", "remove_associate"};
    static const AssociationRoute iscsiOffHost{"PUT", "iscsi_initiator", "remove_iscsi_from_host", true};
    static const AssociationRoute fcOffHost{"PUT", "fc_initiator", "remove_fc_from_host", true};

    // owner, member, one owner, one member, holds owner, holds member, requests, codes
    static const std::vector<Relation> all = {
        {T::STORAGE_POOL, T::LUN, true, false, true, false, {}, {}},
        {T::LUN, T::SNAPSHOT, true, false, true, false, {}, {}},
        {T::LUN_GROUP, T::LUN, false, false, true, true, intoLunGroup, outOfLunGroup,
         Code::ALREADY_IN_LUN_GROUP, Code::NOT_IN_LUN_GROUP},
        {T::LUN_GROUP, T::SNAPSHOT, false, false, true, true, intoLunGroup, outOfLunGroup,
         Code::ALREADY_IN_LUN_GROUP, Code::NOT_IN_LUN_GROUP},
        {T::HOST_GROUP, T::HOST, false, false, true, true, intoHostGroup, outOfHostGroup,
         Code::HOST_ALREADY_IN_GROUP},
        {T::MAPPING_VIEW, T::LUN_GROUP, false, true, false, true, intoView, outOfView},
        {T::MAPPING_VIEW, T::HOST_GROUP, false, true, false, true, intoView, outOfView},
        {T::HOST, T::ISCSI_INITIATOR, true, false, true, true, {}, iscsiOffHost},
        {T::HOST, T::FC_INITIATOR, true, false, true, true, {}, fcOffHost},
    };
    return all;
}

const Relation* relationBetween(Type a, Type b)
{
    const auto found = std::find_if(relations().begin(), relations().end(), [&](const Relation& relation) {
        return (relation.owner == a && relation.member == b) || (relation.owner == b && relation.member == a);
    });
    return found == relations().end() ? nullptr : &*found;
}

void associate(World& world, const Relation& relation, const std::string& owner, const std::string& member)
{
    const ObjectKey ownerKey(relation.owner, world.at(relation.owner, owner).id);
    const ObjectKey memberKey(relation.member, world.at(relation.member, member).id);
    const IdSet& members = world.linked(ownerKey, relation.member);
    const IdSet& owners = world.linked(memberKey, relation.owner);
    if (members.count(member) != 0) {
        throw ArrayError(relation.exists, "The " + described(relation.member, member) +
                                              " is associated with the " + described(relation.owner, owner) +
                                              " already.");
    }
    if (relation.oneOwner && !owners.empty()) {
        throw ArrayError(Code::ASSOCIATION_FULL,
                         "The " + described(relation.member, member) + " belongs to the " +
                             described(relation.owner, *owners.begin()) + ": remove it from there first.");
    }
    if (relation.oneMember && !members.empty()) {
        throw ArrayError(Code::ASSOCIATION_FULL, "The " + described(relation.owner, owner) + " holds the " +
                                                     described(relation.member, *members.begin()) +
                                                     ": remove that from it first.");
    }
    world.link(ownerKey, memberKey);
}

void dissociate(World& world, const Relation& relation, const std::string& owner, const std::string& member)
{
    const ObjectKey ownerKey(relation.owner, world.at(relation.owner, owner).id);
    const ObjectKey memberKey(relation.member, world.at(relation.member, member).id);
    if (world.linked(ownerKey, relation.member).count(member) == 0) {
        throw ArrayError(relation.missing, "The " + described(relation.member, member) +
                                               " is not associated with the " +
                                               described(relation.owner, owner) + ".");
    }
    world.unlink(ownerKey, memberKey);
}

void checkDeletable(const World& world, const ObjectType& type, const Object& object)
{
    for (const auto& relation : relations()) {
        const bool asOwner = relation.owner == type.code && relation.holdsOwner;
        const bool asMember = relation.member == type.code && relation.holdsMember;
        if (!asOwner && !asMember) {
            continue;
        }
        const Type other = asOwner ? relation.member : relation.owner;
        const IdSet& holders = world.linked({type.code, object.id}, other);
        if (!holders.empty()) {
            throw ArrayError(Code::OBJECT_IN_USE,
                             "The " + described(type.code, object.id) + " is in use by " +
                                 std::to_string(holders.size()) + " object(s), first the " +
                                 described(other, *holders.begin()) + ": remove that from it first.");
        }
    }
}

IdList related(const World& world, const ObjectKey& object, Type to)
{
    const std::vector<Type>& chain = chainBetween(object.first, to);
    if (chain.size() < 2) {
        throw ArrayError(Code::ASSOCIATION_UNSUPPORTED, "A " + objectType(to).title +
                                                            " cannot be associated with a " +
                                                            objectType(object.first).title + ".");
    }
    IdSet reached{object.second};
    std::size_t last = 0;
    for (; last + 2 < chain.size(); ++last) {
        reached = united(world, chain[last], reached, chain[last + 1]);
    }
    if (reached.size() == 1) {
        return world.ordered({chain[last], *reached.begin()}, to);
    }
    const ListName name = listName(to, object);
    LongList list = world.kept(name);
    if (!list.ids) {
        const IdSet all = united(world, chain[last], reached, to);
        list.ids = std::make_shared<std::vector<std::string>>(all.begin(), all.end());
        if (all.size() >= MANY) {
            world.keep(name, list);
        }
    }
    return list.ids;
}

} // namespace arraysim
