#ifndef OBJECTS_TABLES_H
#define OBJECTS_TABLES_H

#include "objects/ObjectKind.h"

namespace tesselctl {

/** The commands of each type of object. */
Commands lunCommands();
Commands snapshotCommands();
Commands lunGroupCommands();
Commands hostCommands();
Commands hostGroupCommands();
Commands viewCommands();
Commands iscsiInitiatorCommands();
Commands fcInitiatorCommands();
Commands portCommands();

/** Several lists of commands as one. */
Commands together(const std::vector<Commands>& lists);

} // namespace tesselctl

#endif
