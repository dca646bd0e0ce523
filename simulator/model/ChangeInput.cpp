#include "model/ChangeInput.h"

#include "base/Codes.h"
#include "base/Json.h"
#include "model/FieldInput.h"
#include "model/World.h"

namespace arraysim {

void takeFields(Change& change, const ObjectType& type, const Json::Value& body)
{
    std::set<std::string> allowed{"ID", "TYPE"};
    if (type.parent && (change.creating() || type.parent->modifiable)) {
        allowed.insert({"PARENTID", "PARENTTYPE"});
    }
    for (const auto& field : type.fields) {
        if (change.creating() ? field.givenWhen != Given::NEVER : field.isModifiable) {
            allowed.insert(field.key);
        }
    }
    allowMembers(body, allowed);
    for (const auto& field : type.fields) {
        if (body.isMember(field.key)) {
            change.given[field.key] = inputText(field, body[field.key]);
            if (!field.isTransient) {
                change.values[field.key] = change.given[field.key];
            }
        } else if (change.creating() && field.givenWhen == Given::REQUIRED) {
            throw ArrayError(Code::MEMBER_MISSING,
                             "A new " + type.title + " needs the member " + field.key + ".");
        }
    }
}

void checkUnique(const Change& change, const ObjectType& type)
{
    for (const auto& field : type.fields) {
        const std::string value = field.isUnique ? change.value(field.key) : std::string();
        const std::string* holder =
            value.empty() ? nullptr : change.world.holder(type.code, field.key, value);
        if (holder != nullptr && *holder != change.id) {
            throw ArrayError(Code::NAME_TAKEN, "The " + type.title + " " + *holder + " has the " + field.key +
                                                   " \"" + value + "\" already: choose another.");
        }
    }
}

void takeParent(Change& change, const ObjectType& type, const Json::Value& body)
{
    if (!type.parent) {
        return;
    }
    if (body.isMember("PARENTTYPE") &&
        requiredNumber(body, "PARENTTYPE") != static_cast<int>(type.parent->type)) {
        throw ArrayError(Code::MEMBER_INVALID, "The PARENTTYPE of a " + type.title + " is " +
                                                   std::to_string(static_cast<int>(type.parent->type)) + ".");
    }
    const bool needed = body.isMember("PARENTTYPE") || (change.creating() && type.parent->required);
    if (body.isMember("PARENTID") || needed) {
        change.parentId = change.world.at(type.parent->type, requiredText(body, "PARENTID")).id;
    }
}

} // namespace arraysim
