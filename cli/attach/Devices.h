#ifndef ATTACH_DEVICES_H
#define ATTACH_DEVICES_H

#include "attach/Attachable.h"

namespace tesselctl {

/** --force */
Option forceOption();

/**
 * Rescans and finds the object's device; throws Failure when there is none. Adds "devicePath" and "device".
 */
void scanFor(Context& context, const Attachable& object, const std::string& id, Json::Value& result);

/**
 * Removes the object's devices from this host and looks whether they are gone. Throws before anything is
 * removed when one is in use and --force is not given. Adds "removedDevices".
 */
void removeDevicesOf(Context& context, const Attachable& object, const std::string& id, Json::Value& result);

/** What scanFor or removeDevicesOf put into the result, as text. */
std::string deviceSentence(const Json::Value& result);

} // namespace tesselctl

#endif
