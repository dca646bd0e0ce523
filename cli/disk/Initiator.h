#ifndef DISK_INITIATOR_H
#define DISK_INITIATOR_H

#include "frame/Context.h"

#include <tessel/Access.h>

#include <string>
#include <vector>

namespace tesselctl {

/** --initiator and --initiator-file. */
std::vector<Option> initiatorOptions();
/** The same where a port WWN is taken too. */
std::vector<Option> anyInitiatorOptions();

/** Whether an initiator ID is an iSCSI name and no port WWN. */
bool isIscsiName(const std::string& id);

/** The iSCSI name in a file of the form "InitiatorName=iqn..."; throws Failure when there is none. */
std::string initiatorFromFile(const std::string& path);

/** The initiator that the options name; without them this host's own. */
std::string chosenInitiator(const Context& context);
/** The same, an iSCSI name or a port WWN. */
ovra::tessel::HostInitiator chosenAnyInitiator(const Context& context);

/** The address from which this host reaches the array; empty when it does not. */
std::string localAddressTowards(const ArrayAddress& array);

} // namespace tesselctl

#endif
