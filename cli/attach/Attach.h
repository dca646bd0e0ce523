#ifndef ATTACH_ATTACH_H
#define ATTACH_ATTACH_H

#include "attach/Attachable.h"

#include <json/value.h>
#include <tessel/Exception.h>

#include <string>

namespace tesselctl {

/** What attach and detach tell alike. */
Json::Value resultOf(const char* action, const Attachable& object, const std::string& id,
                     const std::string& initiator);

/** ID of an initiator's host; empty when it belongs to none. Throws NotFound. */
std::string hostOf(Context& context, const std::string& initiator);

/**
 * For the handler of an error that has ended a change of access: throws NotFound where the array does not
 * know the object or the initiator, the error where the array cannot be reached, else what it has left, why,
 * and the advice.
 */
[[noreturn]] void throwUnchanged(Context& context, const Attachable& object, const std::string& id,
                                 const std::string& initiator, const OvraAPIException& error,
                                 const std::string& what, const std::string& advice);

} // namespace tesselctl

#endif
