#ifndef TESSEL_STORAGEFACES_H
#define TESSEL_STORAGEFACES_H

/** @file
 * The handlers of LUNs, snapshots and LUN groups, for const arguments, temporaries and pages. Header only. */

#include <tessel/Handlers.h>

#include <string>

namespace ovra {
namespace tessel {

/** LUNs. */
class Luns : public Face<CLunHandler>
{
public:
    using Face::Face;
    /** As CLunHandler::createLun. @param lun as there, kept as it is. @return as it. */
    LunMO createLun(LunMO lun) const { return (*this)->createLun(lun); }
    /** The LUNs exposed to a host. @param hostID,filter,pageSize as in Face. @return the list, unread. */
    Pages<LunMO> ofHost(const std::string& hostID, const LunMO& filter = LunMO(),
                        unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunQuery>(&CLunHandler::getLunByHost, hostID, filter, pageSize);
    }
    /** The LUNs of a LUN group. @param lunGroupID,filter,pageSize as in Face. @return the list, unread. */
    Pages<LunMO> ofLunGroup(const std::string& lunGroupID, const LunMO& filter = LunMO(),
                            unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunQuery>(&CLunHandler::getLunByLunGroup, lunGroupID, filter, pageSize);
    }
};

/** Snapshots. */
class Snapshots : public Face<CSnapshotHandler>
{
public:
    using Face::Face;
    /** The snapshots exposed to a host. @param hostID,filter,pageSize as in Face. @return the list, unread.
     */
    Pages<SnapshotMO> ofHost(const std::string& hostID, const SnapshotMO& filter = SnapshotMO(),
                             unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<SnapshotQuery>(&CSnapshotHandler::getSnapshotByHost, hostID, filter, pageSize);
    }
    /** The snapshots of a LUN group. @param lunGroupID,filter,pageSize as in Face. @return the list, unread.
     */
    Pages<SnapshotMO> ofLunGroup(const std::string& lunGroupID, const SnapshotMO& filter = SnapshotMO(),
                                 unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<SnapshotQuery>(&CSnapshotHandler::getSnapshotByLunGroup, lunGroupID, filter, pageSize);
    }
};

/** LUN groups. */
class LunGroups : public Face<CLunGroupHandler>
{
public:
    using Face::Face;
    /** As CLunGroupHandler::createLunGroup. @param lunGroup as there, kept as it is. @return as it. */
    LunGroupMO createLunGroup(LunGroupMO lunGroup) const { return (*this)->createLunGroup(lunGroup); }
    /** The LUN groups that hold a LUN. @param lunID,filter,pageSize as in Face. @return the list, unread. */
    Pages<LunGroupMO> ofLun(const std::string& lunID, const LunGroupMO& filter = LunGroupMO(),
                            unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunGroupQuery>(&CLunGroupHandler::getLunGroupByLun, lunID, filter, pageSize);
    }
    /** The LUN groups that hold a snapshot. @param snapshotID,filter,pageSize as in Face. @return the list,
     * unread. */
    Pages<LunGroupMO> ofSnapshot(const std::string& snapshotID, const LunGroupMO& filter = LunGroupMO(),
                                 unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunGroupQuery>(&CLunGroupHandler::getLunGroupBySnapshot, snapshotID, filter, pageSize);
    }
};

} // namespace tessel
} // namespace ovra

#endif
