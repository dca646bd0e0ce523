#ifndef SIMULATION_SCENARIO_H
#define SIMULATION_SCENARIO_H

#include "simulation/Scheduler.h"

#include <rapidcheck.h>

#include <string>
#include <vector>

namespace simulation {

/** What a client does with one LUN: shows it, finds its disk, uses it, takes it away. */
struct Job
{
    unsigned lun; ///< 1, 2 ...
    bool isWhole; ///< by LocalDisk, else by the single operations
    unsigned useSeconds;
};

enum class Trouble
{
    SWITCH,        ///< another client goes on
    KILL,          ///< the client is killed; its last call is made again by another process
    KILL_FOR_GOOD, ///< it is not
    NO_ANSWER,     ///< of a request that was carried out
    NOT_SENT,      ///< and no answer either
    BUSY,          ///< the array asks to come again
    SESSION_DOWN,  ///< for a while
    UDEV_STALLS,
    SCRIPT,         ///< of somebody who takes no lock
    TAKEN_AWAY,     ///< a LUN, by an administrator of the array
    EVENT_LOST,     ///< of the next disk: udev does not name it
    NO_DESCRIPTORS, ///< for the files that it opens next
    NO_PROCESSES,   ///< for the tools and threads that it starts next
    MAPS_ANEW,      ///< somebody has all that are not open go, and multipathd makes them again
    COUNT
};

/** Something that happens when a client has reached a point so often. */
struct Event
{
    unsigned client;
    Point point;
    unsigned nth; ///< 1: the first time
    Trouble trouble;
    unsigned value; ///< which client goes on, which session, how long
};

/** What happens in one run. */
struct Scenario
{
    unsigned sessions; ///< to the array: 1 or 2
    unsigned udevMilliseconds;
    bool isScriptHarmful; ///< with -r it removes what is well
    bool hasMultipath;
    bool isTidied; ///< in the end
    std::vector<std::vector<Job>> clients;
    std::vector<Event> events;
};

std::string textOf(const Scenario& scenario);

const char* nameOf(Point point);

/** The scenario of a seed, and smaller ones in the place of it. */
rc::Shrinkable<Scenario> scenarioOf(std::uint64_t seed);

} // namespace simulation

#endif
