#ifndef PORTS_FCOEPORTFIELDS_H
#define PORTS_FCOEPORTFIELDS_H

#include "session/FieldTable.h"

#include <tessel/FCoEPort.h>

namespace ovra::tessel {

template <>
struct FieldTable<FCoEPortMO>
{
    using MO = FCoEPortMO;
    static constexpr auto fields = std::make_tuple(
        fields::read("ID", &MO::ID, readers::asText), fields::read("NAME", &MO::NAME, readers::asText),
        fields::read("LOCATION", &MO::LOCATION, readers::asText),
        fields::read("HEALTHSTATUS", &MO::HEALTHSTATUS, readers::asUl),
        fields::read("RUNNINGSTATUS", &MO::RUNNINGSTATUS, readers::asUl),
        fields::read("LOGICTYPE", &MO::LOGICTYPE, readers::asUl),
        fields::read("RUNSPEED", &MO::RUNSPEED, readers::asAtoi),
        fields::read("WWN", &MO::WWN, readers::asText),
        fields::read("INIORTGT", &MO::INIORTGT, readers::asUl),
        fields::read("ERRORPACKETS", &MO::ERRORPACKETS, readers::asUl),
        fields::read("LOSTPACKETS", &MO::LOSTPACKETS, readers::asUl),
        fields::read("OVERFLOWEDPACKETS", &MO::OVERFLOWEDPACKETS, readers::asUl),
        fields::read("STARTTIME", &MO::STARTTIME, readers::asUl),
        fields::read("VLANID", &MO::VLANID, readers::asText));
    static constexpr auto filter = std::make_tuple(&MO::ID, &MO::NAME, &MO::LOGICTYPE);
};

} // namespace ovra::tessel

#endif
