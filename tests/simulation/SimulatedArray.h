#ifndef SIMULATION_SIMULATEDARRAY_H
#define SIMULATION_SIMULATEDARRAY_H

#include "support/RecordingPlatform.h"

#include <model/Exposure.h>
#include <wire/ArrayInterface.h>

#include <cstdint>
#include <map>
#include <string>

namespace simulation {

inline const char* const INITIATOR = "iqn.2020-01.test:host"; ///< of the host

/** What stands behind a number of a target. */
struct Unit
{
    std::string wwn;
    std::string id;
    std::uint64_t bytes = 0;
};

/** The array of tessel-arraysim in this process, and what its target shows to the host. */
class SimulatedArray : arraysim::ExposureObserver
{
public:
    SimulatedArray();

    /** Nothing but LUNs "1", "2", ... and the host's initiator. */
    void reset(unsigned luns);
    /** Carries a request out. */
    Reply answer(const SentRequest& request);
    /** The records of all objects of a resource, e.g. "lungroup". */
    Json::Value all(const std::string& resource);
    /** The same, as an administrator would have it. */
    Reply change(const std::string& method, const std::string& target, const Json::Value& body);

    const Unit& unit(const std::string& lun) const { return m_units.at(lun); }
    /** What the target shows at a number; null: nothing. */
    const Unit* at(unsigned number) const;
    const std::map<unsigned, Unit>& shown() const { return m_shown; }
    bool shows(const std::string& lun) const;
    unsigned long changes() const { return m_changes; } ///< of what is shown

private:
    void exposureChanged(const arraysim::ObjectKey& object, const arraysim::ObjectKey& initiator,
                         bool appeared) override;

    arraysim::Store m_store;
    arraysim::World m_world;
    arraysim::Sessions m_sessions;
    arraysim::ArrayInterface m_interface;
    arraysim::ExposureWatch m_watch;
    std::map<std::string, Unit> m_units;
    std::map<unsigned, Unit> m_shown;
    unsigned long m_changes = 0;
};

} // namespace simulation

#endif
