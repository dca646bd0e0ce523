#ifndef OBJECTS_OBJECTKIND_H
#define OBJECTS_OBJECTKIND_H

#include "frame/Context.h"
#include "objects/Existence.h"
#include "objects/Input.h"

#include <string>
#include <vector>

namespace tesselctl {

/** How a type of object is named in commands and texts. */
struct ObjectKind
{
    std::vector<std::string> words;   ///< of the command: {"initiator", "iscsi"}
    std::string title;                ///< in sentences: "iSCSI initiator"
    std::string idName = "ID";        ///< of the argument: "IQN"
    std::vector<std::string> columns; ///< of the list as a table

    std::vector<std::string> command(const std::string& action) const
    {
        std::vector<std::string> path = words;
        path.push_back(action);
        return path;
    }
    Argument idArgument() const { return {idName, idName + " of the " + title, {}}; }
};

/** Tells what was done to an object: a sentence, or {"action", "object", "id"} and what else is in `more`. */
void tellAction(Context& context, const ObjectKind& kind, const std::string& id, const std::string& action,
                const std::string& sentence, const Json::Value& more = Json::Value(Json::objectValue));

} // namespace tesselctl

#endif
