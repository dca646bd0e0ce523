#ifndef STORAGE_LUNGROUPFIELDS_H
#define STORAGE_LUNGROUPFIELDS_H

#include "session/FieldTable.h"

#include <tessel/LunGroup.h>

namespace ovra::tessel {

template <>
struct FieldTable<LunGroupMO>
{
    static constexpr auto fields =
        std::make_tuple(fields::read("ID", &LunGroupMO::ID, readers::asText),
                        fields::read("NAME", &LunGroupMO::NAME, readers::asText),
                        fields::read("DESCRIPTION", &LunGroupMO::DESCRIPTION, readers::asText),
                        fields::read("ISADD2MAPPINGVIEW", &LunGroupMO::ISADD2MAPPINGVIEW, readers::asFlag),
                        fields::read("APPTYPE", &LunGroupMO::APPTYPE, readers::asUl),
                        fields::read("GROUPTYPE", &LunGroupMO::GROUPTYPE, readers::asUl));
    static constexpr MOType TYPE = MO_LUNGROUP;
    static constexpr const char* LIST = "/lungroup/associate?";
    static constexpr auto filter = std::make_tuple(&LunGroupMO::ID, &LunGroupMO::NAME,
                                                   &LunGroupMO::ISADD2MAPPINGVIEW, &LunGroupMO::APPTYPE);
};

} // namespace ovra::tessel

#endif
