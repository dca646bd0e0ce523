#ifndef ACCESS_ISCSIINITIATORFIELDS_H
#define ACCESS_ISCSIINITIATORFIELDS_H

#include "session/FieldTable.h"

#include <tessel/IscsiInitiator.h>

namespace ovra::tessel {

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

} // namespace ovra::tessel

#endif
