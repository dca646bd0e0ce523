#ifndef DISK_INITIATOR_H
#define DISK_INITIATOR_H

#include "frame/Context.h"

#include <string>
#include <vector>

namespace tesselctl {

/** --initiator and --initiator-file. */
std::vector<Option> initiatorOptions();

/** The iSCSI name in a file of the form "InitiatorName=iqn..."; throws Failure when there is none. */
std::string initiatorFromFile(const std::string& path);

/** The initiator that the options name; without them this host's own. */
std::string chosenInitiator(const Context& context);

/** The address from which this host reaches the array; empty when it does not. */
std::string localAddressTowards(const ArrayAddress& array);

} // namespace tesselctl

#endif
