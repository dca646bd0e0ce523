#ifndef ATTACH_DETACHEFFECT_H
#define ATTACH_DETACHEFFECT_H

#include "attach/Attachable.h"

#include <json/value.h>

#include <string>
#include <vector>

namespace tesselctl {

/** What a detach changes beside the one link that is asked for. */
struct DetachEffect
{
    /** A LUN group that the object is taken out of. */
    struct Group
    {
        std::string id;
        std::string name;
        bool isLeftEmpty = false; ///< and deleted then
    };

    std::vector<Group> groups;
    std::vector<std::string> others; ///< host groups that lose it too, or hold hosts that nobody tells
};

/** @param host the host that is to lose the object; empty: all of them. */
DetachEffect effectOfDetach(Session& session, const Attachable& object, const std::string& id,
                            const std::string& host);

/** Throws Failure where other hosts lose the object, or a LUN group is deleted that no attach has made. */
void refuseSideEffects(const DetachEffect& effect, const std::string& object);

/** What a detach with this effect has done, as text; adds "lunGroups" and "otherHostGroups" to the result. */
std::string tellEffect(Session& session, const DetachEffect& effect, Json::Value& result);

} // namespace tesselctl

#endif
