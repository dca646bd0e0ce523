#include "model/Record.h"

#include "base/Codes.h"
#include "base/Text.h"

namespace arraysim {
namespace {

std::string parentId(const World& world, const ObjectType& type, const Object& object)
{
    const IdSet& parents = world.linked({type.code, object.id}, type.parent->type);
    return parents.empty() ? std::string() : *parents.begin();
}

void addParent(Json::Value& answer, const World& world, const ObjectType& type, const Object& object)
{
    const std::string parent = parentId(world, type, object);
    answer["PARENTTYPE"] = parent.empty() ? 0 : static_cast<int>(type.parent->type);
    answer["PARENTID"] = parent;
    answer["PARENTNAME"] = parent.empty() ? std::string() : world.at(type.parent->type, parent).value("NAME");
}

/** Clients spell a flag in a filter as a number too. */
std::string asFlag(const std::string& value)
{
    if (value == "1") {
        return "true";
    }
    return value == "0" ? "false" : value;
}

} // namespace

std::optional<std::string> fieldText(const World& world, const Field& field, const Object& object)
{
    if (field.isSecret || field.isTransient || (field.applies && !field.applies(object))) {
        return std::nullopt;
    }
    return field.compute ? field.compute(world, object) : object.value(field.key, field.defaultValue);
}

Json::Value record(const World& world, const ObjectType& type, const Object& object)
{
    Json::Value answer(Json::objectValue);
    answer["ID"] = object.id;
    answer["TYPE"] = static_cast<int>(type.code);
    if (type.parent) {
        addParent(answer, world, type, object);
    }
    for (const auto& field : type.fields) {
        if (const auto text = fieldText(world, field, object)) {
            if (field.wire == Wire::NUMBER) {
                answer[field.key] = Json::UInt64(decimal(*text).value_or(0));
            } else {
                answer[field.key] = *text;
            }
        }
    }
    return answer;
}

Filter::Filter(const World& world, const ObjectType& type, const std::vector<Condition>& conditions)
    : m_world(world), m_type(type)
{
    for (const auto& condition : conditions) {
        const Field* field = type.field(condition.key);
        const bool known = condition.key == "ID" || (condition.key == "PARENTID" && type.parent) ||
                           (field && field->isFilter);
        if (!known) {
            throw ArrayError(Code::QUERY_MALFORMED,
                             "A " + type.title + " cannot be filtered by " + condition.key + ".");
        }
        m_tests.push_back({field, condition.key,
                           field && field->wire == Wire::FLAG ? asFlag(condition.value) : condition.value});
    }
}

bool Filter::matches(const Object& object) const
{
    for (const auto& test : m_tests) {
        const auto text = test.field         ? fieldText(m_world, *test.field, object)
                          : test.key == "ID" ? std::make_optional(object.id)
                                             : std::make_optional(parentId(m_world, m_type, object));
        if (text != test.value) {
            return false;
        }
    }
    return true;
}

} // namespace arraysim
