#include "model/ObjectType.h"

#include <algorithm>
#include <stdexcept>

namespace arraysim {

const ObjectType* findType(int code)
{
    for (const ObjectType* type : objectTypes()) {
        if (static_cast<int>(type->code) == code) {
            return type;
        }
    }
    return nullptr;
}

const ObjectType& objectType(Type code)
{
    const ObjectType* type = findType(static_cast<int>(code));
    if (type == nullptr) {
        throw std::logic_error("an object type without a declaration");
    }
    return *type;
}

const ObjectType* findResource(const std::string& name)
{
    for (const ObjectType* type : objectTypes()) {
        if (std::find(type->resources.begin(), type->resources.end(), name) != type->resources.end()) {
            return type;
        }
    }
    return nullptr;
}

const Field* ObjectType::field(const std::string& key) const
{
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field& candidate) { return candidate.key == key; });
    return found == fields.end() ? nullptr : &*found;
}

std::string Change::givenText(const std::string& key) const
{
    const auto found = given.find(key);
    return found == given.end() ? std::string() : found->second;
}

std::string Change::value(const std::string& key) const
{
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
}

} // namespace arraysim
