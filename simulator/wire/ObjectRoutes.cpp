#include "wire/ObjectRoutes.h"

#include "base/Json.h"
#include "base/Text.h"
#include "wire/AssociationRoutes.h"
#include "wire/Query.h"

namespace arraysim {
namespace {

const std::set<std::string> NO_PARAMETERS;
const std::set<std::string> LIST_PARAMETERS{"filter", "range", "TYPE"};
const std::set<std::string> ASSOCIATED_PARAMETERS{"filter", "range", "TYPE", "ASSOCIATEOBJTYPE",
                                                  "ASSOCIATEOBJID"};

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
