#ifndef ACCESS_HOSTGROUPFIELDS_H
#define ACCESS_HOSTGROUPFIELDS_H

#include "session/FieldTable.h"

#include <tessel/HostGroup.h>

namespace ovra::tessel {

template <>
struct FieldTable<HostGroupMO>
{
    static constexpr auto fields =
        std::make_tuple(fields::read("ID", &HostGroupMO::ID, readers::asText),
                        fields::read("NAME", &HostGroupMO::NAME, readers::asText),
                        fields::read("DESCRIPTION", &HostGroupMO::DESCRIPTION, readers::asText),
                        fields::read("ISADD2MAPPINGVIEW", &HostGroupMO::ISADD2MAPPINGVIEW, readers::asFlag));
    static constexpr MOType TYPE = MO_HOSTGROUP;
    static constexpr const char* LIST = "/hostgroup/associate?";
    static constexpr auto filter = std::make_tuple(&HostGroupMO::ID, &HostGroupMO::NAME);
};

} // namespace ovra::tessel

#endif
