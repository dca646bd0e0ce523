#include "base/Codes.h"
#include "types/Common.h"
#include "types/Types.h"

#include <algorithm>
#include <cctype>

namespace arraysim {
namespace {

void checkWwpn(const std::string& id)
{
    const bool hex = std::all_of(id.begin(), id.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
    if (id.size() != 16 || !hex) {
        throw ArrayError(Code::MEMBER_INVALID,
                         "The ID of an FC initiator is its WWPN: 16 hexadecimal digits.");
    }
}

} // namespace

const ObjectType& fcInitiatorType()
{
    static const ObjectType type = [] {
        ObjectType initiators{Type::FC_INITIATOR, "FC initiator", {"fc_initiator"}, {}};
        initiators.naming = Naming::BY_CALLER;
        initiators.checkId = checkWwpn;
        initiators.parent = Parent{Type::HOST, false, true};
        initiators.fields = {
            Field("NAME", Wire::TEXT).given(Given::AT_CREATE).modifiable().filter(),
            healthField(),
            runningField(RUNNING_OFFLINE),
            freeFlag(Type::FC_INITIATOR, Type::HOST),
        };
        return initiators;
    }();
    return type;
}

} // namespace arraysim
