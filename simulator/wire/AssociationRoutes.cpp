#include "wire/AssociationRoutes.h"

#include "base/Json.h"
#include "wire/Query.h"

#include <set>

namespace arraysim {
namespace {

const std::set<std::string> LINK_PARAMETERS{"ID", "ASSOCIATEOBJTYPE", "ASSOCIATEOBJID"};

/** What a request for an association names, whether in its body or in its query. */
struct Link
{
    std::string owner;
    int memberType;
    std::string member;
};

Link linkOf(const ObjectRequest& request, const AssociationRoute& route, Type owner)
{
    if (request.method == "DELETE") {
        const Query query(request.target, LINK_PARAMETERS);
        return {query.text("ID"), query.number("ASSOCIATEOBJTYPE"), query.text("ASSOCIATEOBJID")};
    }
    const Query none(request.target, {});
    const Json::Value body = parseBody(request.body);
    if (route.memberOnly) {
        allowMembers(body, {"ID"});
        return {{}, 0, requiredText(body, "ID")};
    }
    allowMembers(body, {"ID", "TYPE", "ASSOCIATEOBJTYPE", "ASSOCIATEOBJID"});
    if (body.isMember("TYPE") && requiredNumber(body, "TYPE") != static_cast<int>(owner)) {
        throw ArrayError(Code::MEMBER_INVALID, "The TYPE does not belong to this resource.");
    }
    return {requiredText(body, "ID"), requiredNumber(body, "ASSOCIATEOBJTYPE"),
            requiredText(body, "ASSOCIATEOBJID")};
}

/** The one owner of a member, for requests that name the member alone. */
std::string onlyOwner(const World& world, const Relation& relation, const std::string& member)
{
    const IdSet& owners =
        world.linked({relation.member, world.at(relation.member, member).id}, relation.owner);
    if (owners.empty()) {
        throw ArrayError(relation.missing, "The " + objectType(relation.member).title + " " + member +
                                               " belongs to no " + objectType(relation.owner).title + ".");
    }
    return *owners.begin();
}

bool isRoute(const std::optional<AssociationRoute>& route, const ObjectRequest& request)
{
    const auto& segments = request.target.segments;
    return route && route->method == request.method && route->resource == segments[0] &&
           route->action == segments[1];
}

} // namespace

bool changesAssociation(World& world, const ObjectRequest& request)
{
    bool isAssociation = false;
    for (const auto& relation : relations()) {
        const bool adds = isRoute(relation.add, request);
        if (!adds && !isRoute(relation.remove, request)) {
            continue;
        }
        isAssociation = true;
        const AssociationRoute& route = adds ? *relation.add : *relation.remove;
        const Link link = linkOf(request, route, relation.owner);
        if (!route.memberOnly && link.memberType != static_cast<int>(relation.member)) {
            continue;
        }
        const std::string owner = route.memberOnly ? onlyOwner(world, relation, link.member) : link.owner;
        World::Transaction transaction(world);
        (adds ? associate : dissociate)(world, relation, owner, link.member);
        transaction.commit();
        return true;
    }
    if (isAssociation) {
        throw ArrayError(Code::ASSOCIATION_UNSUPPORTED, "This resource associates no objects of that type.");
    }
    return false;
}

bool isAction(const std::string& segment)
{
    static const std::set<std::string> actions = [] {
        std::set<std::string> names{"associate", "count"};
        for (const auto& relation : relations()) {
            for (const auto& route : {relation.add, relation.remove}) {
                if (route) {
                    names.insert(route->action);
                }
            }
        }
        return names;
    }();
    return actions.count(segment) != 0;
}

} // namespace arraysim
