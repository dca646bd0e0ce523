#include "types/Common.h"

#include "model/Exposure.h"
#include "model/World.h"
#include "wire/Query.h"

#include <cstdio>

namespace arraysim {
namespace {

std::string& companyId()
{
    static std::string digits = "001405";
    return digits;
}

std::string flagText(bool value)
{
    return value ? "true" : "false";
}

} // namespace

void setCompanyId(const std::string& digits)
{
    companyId() = digits;
}

Field nameField()
{
    return Field("NAME", Wire::text).given(Given::required).range(1, 255).modifiable().unique().filter();
}

Field descriptionField()
{
    return Field("DESCRIPTION", Wire::text).given(Given::atCreate).modifiable();
}

Field healthField()
{
    return Field("HEALTHSTATUS", Wire::decimal).fallback(healthNormal).filter();
}

Field runningField(const char* usual)
{
    return Field("RUNNINGSTATUS", Wire::decimal).fallback(usual).filter();
}

Field associatedFlag(const char* key, Type self, Type other)
{
    return Field(key, Wire::flag).filter().derived([self, other](const World& world, const Object& object) {
        return flagText(!world.linked({self, object.id}, other).empty());
    });
}

Field freeFlag(Type self, Type other)
{
    return Field("ISFREE", Wire::flag)
        .filter()
        .derived([self, other](const World& world, const Object& object) {
            return flagText(world.linked({self, object.id}, other).empty());
        });
}

Field exposedFlag(Type self)
{
    return Field("EXPOSEDTOINITIATOR", Wire::flag)
        .filter()
        .derived([self](const World& world, const Object& object) {
            return flagText(!exposedInitiators(world, {self, object.id}).empty());
        });
}

Field wwnField(char kind)
{
    return Field("WWN", Wire::text).derived([kind](const World& world, const Object& object) {
        const auto array = decimal(world.deviceId().substr(2, 18)).value_or(0);
        const auto id = decimal(object.id).value_or(0);
        char digits[40];
        std::snprintf(digits, sizeof digits, "6%s%c%016llx%08llx", companyId().c_str(), kind, array, id);
        return std::string(digits);
    });
}

} // namespace arraysim
