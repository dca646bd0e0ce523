#include "wire/ObjectRoutes.h"

#include "base/Json.h"
#include "base/Text.h"
#include "wire/Query.h"

#include <algorithm>
#include <functional>

namespace arraysim {
namespace {

const std::set<std::string> NO_PARAMETERS;
const std::set<std::string> LIST_PARAMETERS{"filter", "range", "TYPE"};
const std::set<std::string> ASSOCIATED_PARAMETERS{"filter", "range", "TYPE", "ASSOCIATEOBJTYPE",
                                                  "ASSOCIATEOBJID"};
const std::set<std::string> LINK_PARAMETERS{"ID", "ASSOCIATEOBJTYPE", "ASSOCIATEOBJID"};

[[noreturn]] void unsupported(const ObjectRequest& request)
{
    throw ArrayError(Code::METHOD_UNSUPPORTED, "The resource " + printable(request.target.path) +
                                                   " does not support " + request.method + ".");
}

void checkQueriedType(const ObjectType& type, const Query& query)
{
    if (query.has("TYPE") && query.number("TYPE") != static_cast<int>(type.code)) {
        throw ArrayError(Code::MEMBER_INVALID, "The TYPE of a " + type.title + " is " +
                                                   std::to_string(static_cast<int>(type.code)) + ".");
    }
}

std::optional<AssociatedWith> associatedObject(const Query& query)
{
    if (!query.has("ASSOCIATEOBJTYPE") && !query.has("ASSOCIATEOBJID")) {
        return std::nullopt;
    }
    const ObjectType* type = findType(query.number("ASSOCIATEOBJTYPE"));
    if (type == nullptr) {
        throw ArrayError(Code::ASSOCIATION_UNSUPPORTED,
                         "The array has no objects of type " + query.text("ASSOCIATEOBJTYPE") + ".");
    }
    return AssociatedWith{type->code, query.text("ASSOCIATEOBJID")};
}

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
    const Query none(request.target, NO_PARAMETERS);
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

/** Runs the request when it makes or breaks an association; false when it does not. */
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

Answer routeAction(World& world, const ObjectType& type, const ObjectRequest& request)
{
    if (changesAssociation(world, request)) {
        return {};
    }
    const std::string& action = request.target.segments[1];
    if (request.method != "GET" || (action != "associate" && action != "count")) {
        unsupported(request);
    }
    const Query query(request.target, ASSOCIATED_PARAMETERS);
    checkQueriedType(type, query);
    const auto of = associatedObject(query);
    if (action == "count") {
        return Answer::records(countObjects(world, type, query.selection(), of));
    }
    if (!of) {
        throw ArrayError(Code::MEMBER_MISSING,
                         "An association query needs ASSOCIATEOBJTYPE and ASSOCIATEOBJID.");
    }
    return Answer::records(listObjects(world, type, query.selection(), of));
}

Answer routeCollection(World& world, const ObjectType& type, const ObjectRequest& request)
{
    if (request.method == "GET") {
        const Query query(request.target, LIST_PARAMETERS);
        checkQueriedType(type, query);
        return Answer::records(listObjects(world, type, query.selection(), std::nullopt));
    }
    const Query none(request.target, NO_PARAMETERS);
    if (request.method == "POST") {
        return Answer::records(createObject(world, type, parseBody(request.body), world.settling));
    }
    if (request.method == "PUT") {
        const Json::Value body = parseBody(request.body);
        modifyObject(world, type, requiredText(body, "ID"), body);
        return {};
    }
    unsupported(request);
}

Answer routeOneObject(World& world, const ObjectType& type, const ObjectRequest& request)
{
    const std::string& id = request.target.segments[1];
    const Query none(request.target, NO_PARAMETERS);
    if (request.method == "GET") {
        return Answer::records(readObject(world, type, id));
    }
    if (request.method == "PUT") {
        modifyObject(world, type, id, parseBody(request.body));
        return {};
    }
    if (request.method == "DELETE") {
        deleteObject(world, type, id);
        return {};
    }
    unsupported(request);
}

} // namespace

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

Answer routeObject(World& world, const ObjectRequest& request)
{
    const auto& segments = request.target.segments;
    const ObjectType* type = segments.empty() ? nullptr : findResource(segments[0]);
    if (type == nullptr || segments.size() > 2) {
        throw ArrayError(Code::RESOURCE_UNKNOWN,
                         "The array has no resource " + printable(request.target.path) + ".");
    }
    if (segments.size() == 1 || segments[1].empty()) {
        return routeCollection(world, *type, request);
    }
    return isAction(segments[1]) ? routeAction(world, *type, request) : routeOneObject(world, *type, request);
}

} // namespace arraysim
