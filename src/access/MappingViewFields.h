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
};

} // namespace ovra::tessel

#endif
