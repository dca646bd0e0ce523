#ifndef PORTS_PORTFIELDS_H
#define PORTS_PORTFIELDS_H

#include "session/FieldTable.h"

#include <tessel/ETHPort.h>
#include <tessel/FCPort.h>
#include <tessel/FCoEPort.h>

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

template <>
struct FieldTable<ETHPortMO>
{
    using MO = ETHPortMO;
    static constexpr auto fields = std::make_tuple(
        fields::read("ID", &MO::ID, readers::asText), fields::read("NAME", &MO::NAME, readers::asText),
        fields::read("LOCATION", &MO::LOCATION, readers::asText),
        fields::read("HEALTHSTATUS", &MO::HEALTHSTATUS, readers::asUl),
        fields::read("RUNNINGSTATUS", &MO::RUNNINGSTATUS, readers::asUl),
        fields::read("LOGICTYPE", &MO::LOGICTYPE, readers::asUl),
        fields::read("MACADDRESS", &MO::MACADDRESS, readers::asText),
        fields::read("INIORTGT", &MO::INIORTGT, readers::asUl), fields::read("MTU", &MO::MTU, readers::asUl),
        fields::read("ISCSITCPPORT", &MO::ISCSITCPPORT, readers::asText), // docs/oddities.md#iscsitcpport
        fields::read("ISCSINAME", &MO::ISCSINAME, readers::asText),
        fields::read("ERRORPACKETS", &MO::ERRORPACKETS, readers::asUl),
        fields::read("LOSTPACKETS", &MO::LOSTPACKETS, readers::asUl),
        fields::read("OVERFLOWEDPACKETS", &MO::OVERFLOWEDPACKETS, readers::asUl),
        fields::read("STARTTIME", &MO::STARTTIME, readers::asUl),
        fields::read("SPEED", &MO::SPEED, readers::asUl),
        fields::read("IPV4MASK", &MO::IPV4MASK, readers::asText),
        fields::read("IPV4ADDRESS", &MO::IPV4ADDRESS, readers::asText),
        fields::read("IPV6MASK", &MO::IPV6MASK, readers::asText),
        fields::read("IPV6ADDRESS", &MO::IPV6ADDRESS, readers::asText));
    static constexpr auto filter = std::make_tuple(&MO::ID, &MO::NAME, &MO::LOGICTYPE);
};

} // namespace ovra::tessel

#endif
