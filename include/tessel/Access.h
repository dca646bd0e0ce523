#ifndef TESSEL_ACCESS_H
#define TESSEL_ACCESS_H

/** @file
 * Access that converges: a host sees a LUN or snapshot, or it does not, whatever was there before. */

#include <tessel/Export.h>
#include <tessel/Handler.h>

#include <string>
#include <vector>

class CDeviceManager;

namespace ovra {
namespace tessel {

/** A LUN or a snapshot of the array. */
struct StorageObject
{
    MOType type;    ///< MO_LUN or MO_SNAPSHOT
    std::string id; ///< its ID on the array

    /** @param id ID of a LUN. @return that LUN. */
    static StorageObject lun(const std::string& id) { return StorageObject{MO_LUN, id}; }
    /** @param id ID of a snapshot. @return that snapshot. */
    static StorageObject snapshot(const std::string& id) { return StorageObject{MO_SNAPSHOT, id}; }
};

/** An initiator that the array knows; it tells the host. */
struct HostInitiator
{
    bool isFC;      ///< a port WWN, not an iSCSI name
    std::string id; ///< the name (iqn...), or the port WWN

    /** @param name name of an iSCSI initiator. @return that initiator. */
    static HostInitiator iscsi(const std::string& name) { return HostInitiator{false, name}; }
    /** @param wwn port WWN of an FC initiator. @return that initiator. */
    static HostInitiator fc(const std::string& wwn) { return HostInitiator{true, wwn}; }
};

/** How access is changed; every value may be left as it is. */
struct AccessOptions
{
    std::string hostIP;             ///< address in the record of a host that has to be made; may be empty
    unsigned operatingSystem = 100; ///< HostMO::OPERATIONSYSTEM of such a host
    unsigned tries = 8; ///< how often one step is tried while the array is busy or others are at work
    unsigned pauseMilliseconds =
        100; ///< before the second try; twice as long each time, up to 20 times, and jittered
    bool evenThroughOthers = false; ///< ensureHidden: takes the object out of LUN groups of others too
};

/** An object of the array, by type, ID and name. */
struct NamedObject
{
    MOType type;      ///< what it is
    std::string ID;   ///< its ID on the array
    std::string NAME; ///< its name
};

/** What shows an object to a host: the object is in the LUN group, the host in the host group. */
struct AccessPath
{
    NamedObject lunGroup;    ///< the LUN group
    NamedObject mappingView; ///< binds the two
    NamedObject hostGroup;   ///< the host group
};

/** What ensureVisible and ensureHidden found and did. */
struct AccessResult
{
    bool isVisible = false;            ///< whether the host sees the object now, as the array says
    bool wasVisible = false;           ///< whether it saw it before
    std::string hostID;                ///< the host; empty when the initiator belongs to none
    AccessPath own;                    ///< the host's own objects, as far as they were looked for
    std::vector<NamedObject> made;     ///< what was made, in this order
    std::vector<NamedObject> leftFrom; ///< LUN groups that the object was taken out of
    /** What shows the object though the host's own LUN group does not hold it; and, of ensureHidden, to whom
     * else that group is shown, which keeps the object in it. */
    std::vector<AccessPath> others;
};

/**
 * Lets a host see a LUN or snapshot. Each host has one LUN group, one host group and one mapping view of its
 * own for this, named tessel_host_ and the host's ID; what is missing of them is made, and what an earlier
 * call could not finish is finished. A host is made for an initiator that belongs to none. Groups and views
 * of others are never changed: where the host sees the object through them already, nothing is done, and they
 * are told.
 *
 * Any number of calls may meet, for one host or many, in one process or many: those of one host end with the
 * same three objects. Nothing that may have been carried out is sent again before it was read back. Objects
 * are found through their associations alone; a name that is taken by an object that cannot be found so,
 * which a crash between two requests may leave, gets a suffix.
 *
 * Takes about 15 requests, and about 30 for the first object of a host. Needs getInstance with tries enough
 * for the array to show a new object (as Array has).
 *
 * @param manager logged in.
 * @param object the LUN or snapshot.
 * @param initiator an initiator of the host, known to the array.
 * @param options see there.
 * @return isVisible is true.
 * @throws OvraAPIException when it could not be reached; the same call again goes on from there.
 */
TESSEL_API AccessResult ensureVisible(CDeviceManager& manager, const StorageObject& object,
                                      const HostInitiator& initiator,
                                      const AccessOptions& options = AccessOptions());

/**
 * Takes a LUN or snapshot out of the host's own LUN group, which stays, with host group and mapping view, for
 * the next object. Other hosts, and LUN groups of others, keep what they have: where the host still sees the
 * object through them, or somebody shows the host's own LUN group to another host group, isVisible is true
 * and they are told; with AccessOptions::evenThroughOthers the object is taken out of these LUN groups too,
 * and so away from every host that they serve.
 *
 * May meet other calls as ensureVisible does. Takes about 8 requests.
 *
 * @param manager logged in.
 * @param object the LUN or snapshot; need not exist any more.
 * @param initiator an initiator of the host, known to the array. One that belongs to no host sees nothing.
 * @param options see there.
 * @return what was done, and what shows the object still.
 * @throws OvraAPIException when it could not be done, or not be told whether it was; call it again.
 */
TESSEL_API AccessResult ensureHidden(CDeviceManager& manager, const StorageObject& object,
                                     const HostInitiator& initiator,
                                     const AccessOptions& options = AccessOptions());

} // namespace tessel
} // namespace ovra

#endif
