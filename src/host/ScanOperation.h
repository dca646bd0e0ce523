#ifndef HOST_SCANOPERATION_H
#define HOST_SCANOPERATION_H

#include "host/DeviceRemoval.h"
#include "host/Interruption.h"
#include "host/Korvex.h"
#include "observer/Steps.h"
#include "session/DeviceManagerImpl.h"
#include "session/Operation.h"
#include "storage/DiskKinds.h"

#include <tessel/DiskScanner.h>

#include <functional>
#include <optional>
#include <string>

namespace ovra::tessel {

/** Reads the object whose device is wanted; ends the operation, without an exception, when it cannot. */
template <class Kind>
std::optional<typename Kind::Object> readScanned(Operation& op, CDeviceManagerImpl* deviceManager,
                                                 const std::string& id)
{
    op.names(Kind::ID.kind, id);
    if (op.closeUnless(!id.empty(), Kind::ID.textIfEmpty)) {
        return std::nullopt;
    }
    CHandler* const handler = deviceManager == nullptr ? nullptr : deviceManager->getHandler(Kind::HANDLER);
    if (handler == nullptr) {
        op.closeUnless(false, deviceManager == nullptr ? texts::NO_DEVICE_MANAGER : Kind::NO_HANDLER);
        return std::nullopt;
    }
    return std::invoke(Kind::GET, static_cast<typename Kind::Handler&>(*handler), id);
}

/** Before the steps of a scan or a removal. */
inline void beginSteps()
{
    setLastScanSignal(0);
    setScanEnded(false);
}

/** Reports that the steps were ended, by a limit of the call or from the keyboard; false when they were not.
 */
inline bool endIfInterrupted(Operation& op)
{
    if (isScanEnded()) {
        COMMLOG(OS_LOG_ERROR, "The call was ended: the steps after it are not run.");
        op.close(RESULT_BAD_ARGUMENT);
        op.keep("The call was ended", true);
        return true;
    }
    if (lastScanSignal() == 0) {
        return false;
    }
    COMMLOG(OS_LOG_ERROR, "A command of the host was ended by signal %d: the steps after it are not run.",
            lastScanSignal());
    op.close(RESULT_BAD_ARGUMENT);
    op.keep("A command of the host was ended by signal " + std::to_string(lastScanSignal()), true);
    return true;
}

/**
 * What every scan is around its own steps.
 * @param steps give the path that they find, empty for none; nothing when there was no scan.
 */
template <class Kind, class Steps>
std::string scan(const char* name, CDeviceManagerImpl* deviceManager, const std::string& id, Steps steps)
{
    beginSteps();
    return Operation::run(Frame(name).recordedLast(), deviceManager, [&](Operation& op) {
        auto object = readScanned<Kind>(op, deviceManager, id);
        if (!object) {
            return std::string();
        }
        const auto path = untilInterrupted([&]() -> std::optional<std::string> { return steps(*object); });
        if (endIfInterrupted(op)) {
            return std::string();
        }
        if (!path) {
            COMMLOG(OS_LOG_ERROR, "Get Lock Failed");
            op.close(RESULT_BAD_ARGUMENT);
            op.keep("Get Lock Failed");
        } else if (path->empty()) {
            COMMLOG(OS_LOG_WARN, "%s", Kind::NOT_FOUND);
            op.keep(Kind::NOT_FOUND, true);
        } else {
            op.seen().found(*path);
            tellStep(HostEvent::FOUND, *path);
        }
        return path.value_or(std::string());
    });
}

/** Without the rescan lock: docs/oddities.md#no-lock */
template <class Kind>
void removeDevicesOf(const char* name, CDeviceManagerImpl* deviceManager, const std::string& id)
{
    beginSteps();
    Operation::run(Frame(name).recordedLast(), deviceManager, [&](Operation& op) {
        const auto object = readScanned<Kind>(op, deviceManager, id);
        if (!object) {
            return;
        }
        const disk::Presence korvex = knownKorvex();
        if (korvex == disk::Presence::PRESENT) {
            COMMLOG(OS_LOG_INFO, "Korvex installed,No need to delete device");
        }
        if (korvex != disk::Presence::ABSENT || !checkWwn(object->WWN)) {
            return;
        }
        const bool listed = untilInterrupted([&] { return removeDevices(Kind::NOUN, {object->WWN, id}); });
        if (!endIfInterrupted(op) && !listed) {
            op.close(RESULT_BAD_ARGUMENT);
            COMMLOG(OS_LOG_ERROR, "lsscsi command is not enable!");
            op.keep("lsscsi command is not enable!");
        }
    });
}

} // namespace ovra::tessel

#endif
