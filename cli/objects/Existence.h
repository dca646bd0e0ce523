#ifndef OBJECTS_EXISTENCE_H
#define OBJECTS_EXISTENCE_H

#include "kernel/Failure.h"
#include "session/Session.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tesselctl {

/** Reads an object by its ID and tells the ID of the answer; throws what the SDK throws. */
using ReadId = std::function<std::string(const std::string& id)>;

[[noreturn]] void throwNotFound(const std::string& title, const std::string& id, int arrayCode = 0);

/**
 * Whether an error answer means that the array has no object with this ID. No code for that is known of every
 * array: it is the one that this array gives for an ID that no object can have, on a session that is in
 * force.
 */
bool saysNotFound(Session& session, const ReadId& read, const std::string& id, int arrayCode);

/**
 * Reads one object by its ID: get(id) of the SDK. An answer without the object, and the array's own word for
 * an ID that it does not know, both end as NotFound.
 */
template <class Get>
auto mustRead(Session& session, const std::string& title, const std::string& id, Get get) -> decltype(get(id))
{
    try {
        auto record = get(id);
        if (record.ID.empty()) {
            throwNotFound(title, id);
        }
        return record;
    } catch (const OvraAPIExceptionWithErrCode& error) {
        if (saysNotFound(
                session, [&](const std::string& other) { return get(other).ID; }, id, error.getErrCode())) {
            throwNotFound(title, id, error.getErrCode());
        }
        throw;
    }
}

/** An object by the title of its type, "LUN group", and its ID. */
using Named = std::pair<std::string, std::string>;

/** Throws NotFound where the array has no such object. */
void requireThere(Session& session, const Named& object);

/** Does some work with objects; when the array refuses it, looks whether they are there at all. */
template <class Work>
auto withObjects(Session& session, const std::vector<Named>& objects, Work work) -> decltype(work())
{
    try {
        return work();
    } catch (const OvraAPIExceptionWithErrCode&) {
        for (const auto& object : objects) {
            requireThere(session, object);
        }
        throw;
    }
}

} // namespace tesselctl

#endif
