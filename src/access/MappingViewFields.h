#ifndef ACCESS_MAPPINGVIEWFIELDS_H
#define ACCESS_MAPPINGVIEWFIELDS_H

#include "session/FieldTable.h"

#include <tessel/MappingView.h>

namespace ovra::tessel {

template <>
struct FieldTable<MappingViewMO>
{
    static constexpr auto fields = std::make_tuple(
        fields::read("ID", &MappingViewMO::ID, readers::asText),
        fields::read("NAME", &MappingViewMO::NAME, readers::asText),
        fields::read("DESCRIPTION", &MappingViewMO::DESCRIPTION, readers::asText),
        fields::read("ENABLEINBANDCOMMAND", &MappingViewMO::ENABLEINBANDCOMMAND, readers::asFlag));
    static constexpr MOType TYPE = MO_MAPPINGVIEW;
    static constexpr const char* LIST = "/mappingview/associate?";
    static constexpr auto filter = std::make_tuple(&MappingViewMO::ID, &MappingViewMO::NAME);
};

} // namespace ovra::tessel

#endif
