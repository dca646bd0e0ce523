#ifndef SIMULATOR_WIRE_ARRAYINTERFACE_H
#define SIMULATOR_WIRE_ARRAYINTERFACE_H

#include "model/Operations.h"
#include "wire/Sessions.h"

namespace arraysim {

/** One request to the array's interface. */
struct ArrayRequest
{
    std::string method;
    std::string target; ///< raw, as it stood in the request line
    std::string body;
    std::string token;
    std::string cookie;
};

/** The array's management interface: sessions and objects below /deviceManager/rest/. */
class ArrayInterface
{
public:
    ArrayInterface(World& world, Sessions& sessions) : m_world(world), m_sessions(sessions) {}

    /** Never throws: what is refused becomes an error object. */
    Answer handle(const ArrayRequest& request);
    /** The same operations on objects without a session, for the control interface. */
    Answer handleObject(const std::string& method, const std::string& target, const std::string& body);

private:
    Answer route(const ArrayRequest& request);

    World& m_world;
    Sessions& m_sessions;
};

/**
 * The part of a raw target behind /deviceManager/rest/DEVICEID, e.g. "/lun/7"; the target as it is
 * where it does not begin so.
 */
std::string relativeTarget(const std::string& target);

/** A relative target with {id} for the object's ID, for the counters; "other" for what no array has. */
std::string resourceTemplate(const std::string& relative);

} // namespace arraysim

#endif
