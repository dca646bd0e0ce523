#ifndef PORTS_FCPORTFIELDS_H
#define PORTS_FCPORTFIELDS_H

#include "session/FieldTable.h"

#include <tessel/FCPort.h>

namespace ovra::tessel {

template <>
struct FieldTable<FCPortMO>
{
    using MO = FCPortMO;
    static constexpr auto fields = std::make_tuple(
        fields::read("ID", &MO::ID, readers::asText), fields::read("NAME", &MO::NAME, readers::asText),
        fields::read("LOCATION", &MO::LOCATION, readers::asText),
        fields::read("HEALTHSTATUS", &MO::HEALTHSTATUS, readers::asUl),
        fields::read("RUNNINGSTATUS", &MO::RUNNINGSTATUS, readers::asUl),
        fields::read("LOGICTYPE", &MO::LOGICTYPE, readers::asUl),
        fields::read("RUNSPEED", &MO::RUNSPEED, readers::asAtoi),
        fields::read("CONFSPEED", &MO::CONFSPEED, readers::asUl),
        fields::read("WWN", &MO::WWN, readers::asText),
        fields::read("INIORTGT", &MO::INIORTGT, readers::asUl),
        fields::read("FCRUNMODE", &MO::FCRUNMODE, readers::asUl),
        fields::read("LOSTSIGNALS", &MO::LOSTSIGNALS, readers::asUl),
        fields::read("BADCHARNUMBER", &MO::BADCHARNUMBER, readers::asUl),
        fields::read("LOSTSYNC", &MO::LOSTSYNC, readers::asUl),
        fields::read("LINKFAIL", &MO::LINKFAIL, readers::asUl),
        fields::read("STARTTIME", &MO::STARTTIME, readers::asUl),
        fields::read("FLOGINDELAYTIMES", &MO::FLOGINDELAYTIMES, readers::asUl),
        fields::read("MAXSUPPORTSPEED", &MO::MAXSUPPORTSPEED, readers::asUl));
    static constexpr auto filter = std::make_tuple(&MO::ID, &MO::NAME, &MO::LOGICTYPE);
};

} // namespace ovra::tessel

#endif
