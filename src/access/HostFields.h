#ifndef ACCESS_HOSTFIELDS_H
#define ACCESS_HOSTFIELDS_H

#include "session/FieldTable.h"

#include <tessel/Host.h>

namespace ovra::tessel {

template <>
struct FieldTable<HostMO>
{
    static constexpr auto fields =
        std::make_tuple(fields::read("ID", &HostMO::ID, readers::asText),
                        fields::read("NAME", &HostMO::NAME, readers::asText),
                        // A JSON number where the states are texts: docs/oddities.md#parenttype
                        fields::read("PARENTTYPE", &HostMO::PARENTTYPE, readers::asJsonUnsigned),
                        fields::read("PARENTID", &HostMO::PARENTID, readers::asText),
                        fields::read("LOCATION", &HostMO::LOCATION, readers::asText),
                        fields::read("HEALTHSTATUS", &HostMO::HEALTHSTATUS, readers::asUl),
                        fields::read("RUNNINGSTATUS", &HostMO::RUNNINGSTATUS, readers::asUl),
                        fields::read("DESCRIPTION", &HostMO::DESCRIPTION, readers::asText),
                        fields::read("OPERATIONSYSTEM", &HostMO::OPERATIONSYSTEM, readers::asUl),
                        fields::read("IP", &HostMO::IP, readers::asText),
                        fields::read("ISADD2HOSTGROUP", &HostMO::ISADD2HOSTGROUP, readers::asFlag));
};

} // namespace ovra::tessel

#endif
