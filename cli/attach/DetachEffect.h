#ifndef ATTACH_DETACHEFFECT_H
#define ATTACH_DETACHEFFECT_H

#include "attach/Attachable.h"

#include <json/value.h>

#include <string>
#include <vector>

namespace tesselctl {

using LunGroupList = std::vector<ovra::tessel::NamedObject>;

/** Whether a LUN group or host group has a name that ensureVisible gives to those of one host. */
bool isOwnName(const std::string& name, const std::string& host);

/** The LUN groups through which the host sees the object, but for those that ensureVisible made for others.
 */
LunGroupList groupsTowards(Session& session, const Attachable& object, const std::string& id,
                           const std::string& host);

/**
 * Why an object may not be taken out of LUN groups unasked, a sentence each: one that no attach has made, or
 * one through which others than the host see it too.
 * @param host the host that is to lose the object; empty: all of them.
 */
std::vector<std::string> objections(Session& session, const Attachable& object, const std::string& id,
                                    const LunGroupList& groups, const std::string& host);

/** The LUN groups that the object was taken out of, and the host groups that lost it with the host, as text;
 * adds "lunGroups" and "otherHostGroups" to the result. */
std::string tellEffect(Session& session, const LunGroupList& groups, const std::string& host,
                       Json::Value& result);

} // namespace tesselctl

#endif
