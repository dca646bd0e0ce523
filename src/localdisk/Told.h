#ifndef LOCALDISK_TOLD_H
#define LOCALDISK_TOLD_H

#include "localdisk/Whole.h"
#include "observer/Observation.h"
#include "session/ManagerOptions.h"
#include "storage/DiskKinds.h"

#include <tessel/Access.h>
#include <tessel/DeviceManager.h>

namespace ovra::tessel {

/** A call on one disk, whose end the observers are told. */
template <class Steps>
auto told(const char* call, const CDeviceManager& manager, const StorageObject& volume, const Steps& steps)
{
    return observed(call, manager, [&](Observation& seen) {
        seen.names(kinds::of(volume.type), volume.id);
        const OptionsInForce limits(&manager);
        return whole([&] { return steps(seen); });
    });
}

} // namespace ovra::tessel

#endif
