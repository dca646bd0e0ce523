#include "types/Common.h"
#include "types/Types.h"
#include "wire/Codes.h"

#include <algorithm>
#include <cctype>

namespace arraysim {
namespace {

void checkWwpn(const std::string& id)
{
    const bool hex = std::all_of(id.begin(), id.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
    if (id.size() != 16 || !hex) {
        throw ArrayError(Code::memberInvalid,
                         "The ID of an FC initiator is its WWPN: 16 hexadecimal digits.");
    }
}

} // namespace

const ObjectType& fcInitiatorType()
{
    static const ObjectType type = [] {
        ObjectType initiators{Type::fcInitiator, "FC initiator", {"fc_initiator"}, {}};
        initiators.naming = Naming::byCaller;
        initiators.checkId = checkWwpn;
        initiators.parent = Parent{Type::host, false, true};
        initiators.fields = {
            Field("NAME", Wire::text).given(Given::atCreate).modifiable().filter(),
            healthField(),
            runningField(runningOffline),
            freeFlag(Type::fcInitiator, Type::host),
        };
        return initiators;
    }();
    return type;
}

} // namespace arraysim
