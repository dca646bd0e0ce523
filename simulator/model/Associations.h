#ifndef SIMULATOR_MODEL_ASSOCIATIONS_H
#define SIMULATOR_MODEL_ASSOCIATIONS_H

#include "base/Codes.h"
#include "model/World.h"

#include <optional>
#include <string>
#include <vector>

namespace arraysim {

/** The request that makes or breaks an association. */
struct AssociationRoute
{
    std::string method;
    std::string resource;
    std::string action;
    bool memberOnly = false; ///< the request names the member alone: it has one owner at most
};

/** Which objects can be associated, and what that means for both. */
struct Relation
{
    Type owner;
    Type member;
    bool oneOwner;    ///< a member has one owner at most
    bool oneMember;   ///< an owner has one member of this type at most
    bool holdsOwner;  ///< an owner with members is not deleted
    bool holdsMember; ///< a member with an owner is not deleted
    std::optional<AssociationRoute> add;
    std::optional<AssociationRoute> remove;
    Code exists = Code::ASSOCIATION_EXISTS;
    Code missing = Code::ASSOCIATION_MISSING;
};

const std::vector<Relation>& relations();
/** The relation of two types in either order, or null. */
const Relation* relationBetween(Type a, Type b);

/** Throws ArrayError where either object is missing, they are associated already, or one is full. */
void associate(World& world, const Relation& relation, const std::string& owner, const std::string& member);
/** Throws ArrayError where either object is missing or they are not associated. */
void dissociate(World& world, const Relation& relation, const std::string& owner, const std::string& member);
/** Throws ArrayError (OBJECT_IN_USE) where an association keeps the object from being deleted. */
void checkDeletable(const World& world, const ObjectType& type, const Object& object);

/**
 * The objects of type to that can be reached from the object over the shortest chain of relations,
 * e.g. the LUNs of a host by host group, mapping view and LUN group. Throws ArrayError
 * (ASSOCIATION_UNSUPPORTED) where no chain joins the two types.
 */
IdList related(const World& world, const ObjectKey& object, Type to);

} // namespace arraysim

#endif
