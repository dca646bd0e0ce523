#include "types/Common.h"

#include "base/Text.h"
#include "model/Exposure.h"
#include "model/World.h"

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
    return Field("NAME", Wire::TEXT).given(Given::REQUIRED).range(1, 255).modifiable().unique().filter();
}

Field descriptionField()
{
    return Field("DESCRIPTION", Wire::TEXT).given(Given::AT_CREATE).modifiable();
}

Field healthField()
{
    return Field("HEALTHSTATUS", Wire::DECIMAL).fallback(HEALTH_NORMAL).filter();
}

Field runningField(const char* usual)
{
    return Field("RUNNINGSTATUS", Wire::DECIMAL).fallback(usual).filter();
}

Field associatedFlag(const char* key, Type self, Type other)
{
    return Field(key, Wire::FLAG).filter().derived([self, other](const World& world, const Object& object) {
        return flagText(!world.linked({self, object.id}, other).empty());
    });
}

Field freeFlag(Type self, Type other)
{
    return Field("ISFREE", Wire::FLAG)
        .filter()
        .derived([self, other](const World& world, const Object& object) {
            return flagText(world.linked({self, object.id}, other).empty());
        });
}

Field exposedFlag(Type self)
{
    return Field("EXPOSEDTOINITIATOR", Wire::FLAG)
        .filter()
        .derived([self](const World& world, const Object& object) {
            return flagText(!exposedInitiators(world, {self, object.id}).empty());
        });
}

Field wwnField(char kind)
{
    return Field("WWN", Wire::TEXT).derived([kind](const World& world, const Object& object) {
        const auto array = decimal(world.deviceId().substr(2, 18)).value_or(0);
        const auto id = decimal(object.id).value_or(0);
        char digits[40];
        std::snprintf(digits, sizeof digits, "6%s%c%016llx%08llx", companyId().c_str(), kind, array, id);
        return std::string(digits);
    });
}

} // namespace arraysim
