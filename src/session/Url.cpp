#include "session/Url.h"

namespace ovra::tessel {

bool addsCondition(const std::string& value)
{
    constexpr const char* NAME = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789";
    for (size_t at = value.find(" and "); at != std::string::npos; at = value.find(" and ", at + 1)) {
        const size_t name = value.find_first_not_of(' ', at + 4);
        const size_t end = value.find_first_not_of(NAME, name);
        if (end != std::string::npos && end != name && value[end] == ':' && value[name] > '9') {
            return true;
        }
    }
    return false;
}

std::string associatedWith(unsigned long otherType, const std::string& otherId)
{
    return "ASSOCIATEOBJTYPE=" + std::to_string(otherType) + "&ASSOCIATEOBJID=" + urlValue(otherId);
}

std::string memberOf(const std::string& groupId, MOType type, const std::string& id)
{
    return "ID=" + urlValue(groupId) + "&" + associatedWith(type, id);
}

std::string associationOf(MOType ownType, unsigned long otherType, const std::string& otherId)
{
    return "TYPE=" + std::to_string(ownType) + "&" + associatedWith(otherType, otherId);
}

std::string rangeOf(unsigned long start, unsigned long count, const char* separator)
{
    if (count == 0) {
        return std::string();
    }
    return std::string(separator) + "range=[" + std::to_string(start) + "-" +
           std::to_string(saturatedSum(start, count)) + "]";
}

} // namespace ovra::tessel
