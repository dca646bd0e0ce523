#ifndef ACCESS_FCINITIATORFIELDS_H
#define ACCESS_FCINITIATORFIELDS_H

#include "session/FieldTable.h"

#include <tessel/FCInitiator.h>

namespace ovra::tessel {

template <>
struct FieldTable<FCInitiatorMO>
{
    static constexpr auto fields =
        std::make_tuple(fields::read("ID", &FCInitiatorMO::ID, readers::asText),
                        fields::read("NAME", &FCInitiatorMO::NAME, readers::asTextIfPresent),
                        fields::read("PARENTID", &FCInitiatorMO::PARENTID, readers::asTextIfPresent),
                        fields::read("PARENTNAME", &FCInitiatorMO::PARENTNAME, readers::asTextIfPresent),
                        fields::read("HEALTHSTATUS", &FCInitiatorMO::HEALTHSTATUS, readers::asUl),
                        fields::read("RUNNINGSTATUS", &FCInitiatorMO::RUNNINGSTATUS, readers::asUl),
                        fields::read("ISFREE", &FCInitiatorMO::ISFREE, readers::asFlag));
};

} // namespace ovra::tessel

#endif
