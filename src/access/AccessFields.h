#ifndef ACCESS_ACCESSFIELDS_H
#define ACCESS_ACCESSFIELDS_H

#include "session/FieldTable.h"

#include <tessel/FCInitiator.h>
#include <tessel/Host.h>
#include <tessel/HostGroup.h>
#include <tessel/IscsiInitiator.h>
#include <tessel/MappingView.h>

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

template <>
struct FieldTable<IscsiInitiatorMO>
{
    using MO = IscsiInitiatorMO;
    static constexpr auto fields = std::make_tuple(
        fields::read("ID", &MO::ID, readers::asText),
        fields::read("NAME", &MO::NAME, readers::asTextIfPresent),
        fields::read("PARENTID", &MO::PARENTID, readers::asTextIfPresent),
        fields::read("PARENTNAME", &MO::PARENTNAME, readers::asTextIfPresent),
        fields::notRead("PARENTTYPE", &MO::PARENTTYPE),
        fields::read("HEALTHSTATUS", &MO::HEALTHSTATUS, readers::asUl),
        fields::read("RUNNINGSTATUS", &MO::RUNNINGSTATUS, readers::asUl),
        fields::read("ISFREE", &MO::ISFREE, readers::asFlag),
        fields::read("USECHAP", &MO::USECHAP, readers::asFlag),
        fields::read("NORMALVERMODE", &MO::NORMALVERMODE, readers::asTextIfPresent),
        fields::read("DISCOVERYVERMODE", &MO::DISCOVERYVERMODE, readers::asTextIfPresent),
        fields::read("CHAPNAME", &MO::CHAPNAME, readers::asTextIfPresent),
        fields::secret("CHAPPASSWORD", &MO::CHAPPASSWORD),
        fields::secret("CHAPOLDPASSWORD", &MO::CHAPOLDPASSWORD),
        // docs/oddities.md#initator
        fields::read("CHAPNAMEINITATORVERTARGET", &MO::CHAPNAMEINITATORVERTARGET, readers::asTextIfPresent),
        fields::secret("CHAPPASSWORDINITATORVERTARGET", &MO::CHAPPASSWORDINITATORVERTARGET),
        fields::secret("CHAPOLDPASSWORDINITATORVERTARGET", &MO::CHAPOLDPASSWORDINITATORVERTARGET));
};

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
