#ifndef OBJECTS_OBJECTKIND_H
#define OBJECTS_OBJECTKIND_H

#include "frame/Context.h"
#include "frame/Outcome.h"
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

[[noreturn]] inline void throwNotFound(const std::string& title, const std::string& id, int arrayCode = 0)
{
    throw NotFound("the array has no " + title + " with the ID '" + id + "'", arrayCode);
}

/**
 * Reads one object by its ID: get(id) of the SDK. An answer without the object, and the array's own word for
 * an ID that it does not know, both end as NotFound.
 */
template <class Get>
auto mustRead(const std::string& title, const std::string& id, Get get) -> decltype(get(id))
{
    try {
        auto record = get(id);
        if (record.ID.empty()) {
            throwNotFound(title, id);
        }
        return record;
    } catch (const OvraAPIExceptionWithErrCode& error) {
        if (saysNotFound(error.getErrCode())) {
            throwNotFound(title, id, error.getErrCode());
        }
        throw;
    }
}

/** Tells what was done to an object: a sentence, or {"action", "object", "id"} and what else is in `more`. */
void tellAction(Context& context, const ObjectKind& kind, const std::string& id, const std::string& action,
                const std::string& sentence, const Json::Value& more = Json::Value(Json::objectValue));

} // namespace tesselctl

#endif
