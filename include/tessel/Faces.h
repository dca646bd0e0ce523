#ifndef TESSEL_FACES_H
#define TESSEL_FACES_H

/** @file
 * The handlers, for const arguments, temporaries and pages. Header only. */

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
    /**
     * The LUNs that mapping views expose to a host; the set fields of filter select, as in LunQuery.
     * @param hostID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<LunMO> ofHost(const std::string& hostID, const LunMO& filter = LunMO(),
                        unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunQuery>(&CLunHandler::getLunByHost, hostID, filter, pageSize);
    }
    /**
     * The LUNs of a LUN group; the set fields of filter select, as in LunQuery.
     * @param lunGroupID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
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
    /**
     * The snapshots that mapping views expose to a host; the set fields of filter select, as in
     * SnapshotQuery.
     * @param hostID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<SnapshotMO> ofHost(const std::string& hostID, const SnapshotMO& filter = SnapshotMO(),
                             unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<SnapshotQuery>(&CSnapshotHandler::getSnapshotByHost, hostID, filter, pageSize);
    }
    /**
     * The snapshots of a LUN group; the set fields of filter select, as in SnapshotQuery.
     * @param lunGroupID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
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
    /**
     * The LUN groups that hold a LUN; the set fields of filter select, as in LunGroupQuery.
     * @param lunID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<LunGroupMO> ofLun(const std::string& lunID, const LunGroupMO& filter = LunGroupMO(),
                            unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunGroupQuery>(&CLunGroupHandler::getLunGroupByLun, lunID, filter, pageSize);
    }
    /**
     * The LUN groups that hold a snapshot; the set fields of filter select, as in LunGroupQuery.
     * @param snapshotID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<LunGroupMO> ofSnapshot(const std::string& snapshotID, const LunGroupMO& filter = LunGroupMO(),
                                 unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<LunGroupQuery>(&CLunGroupHandler::getLunGroupBySnapshot, snapshotID, filter, pageSize);
    }
};

/** Hosts. */
class Hosts : public Face<CHostHandler>
{
public:
    using Face::Face;
    /** As CHostHandler::createHost. @param host as there, kept as it is. @return as it. */
    HostMO createHost(HostMO host) const { return (*this)->createHost(host); }
};

/** Host groups. */
class HostGroups : public Face<CHostGroupHandler>
{
public:
    using Face::Face;
    /** As CHostGroupHandler::createHostGroup. @param hostGroup as there, kept as it is. @return as it. */
    HostGroupMO createHostGroup(HostGroupMO hostGroup) const { return (*this)->createHostGroup(hostGroup); }
    /**
     * The host groups that hold a host; the set fields of filter select, as in HostGroupQuery.
     * @param hostID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<HostGroupMO> ofHost(const std::string& hostID, const HostGroupMO& filter = HostGroupMO(),
                              unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<HostGroupQuery>(&CHostGroupHandler::getHostGroupByHost, hostID, filter, pageSize);
    }
};

/** Mapping views. */
class MappingViews : public Face<CMappingViewHandler>
{
public:
    using Face::Face;
    /** As CMappingViewHandler::createMappingView. @param view as there, kept as it is. @return as it. */
    MappingViewMO createMappingView(MappingViewMO view) const { return (*this)->createMappingView(view); }
    /**
     * The mapping views of a LUN group; the set fields of filter select, as in MappingViewQuery.
     * @param lunGroupID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<MappingViewMO> ofLunGroup(const std::string& lunGroupID,
                                    const MappingViewMO& filter = MappingViewMO(),
                                    unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<MappingViewQuery>(&CMappingViewHandler::getMappingViewByLunGroup, lunGroupID, filter,
                                       pageSize);
    }
    /**
     * The mapping views of a host group; the set fields of filter select, as in MappingViewQuery.
     * @param hostGroupID,filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<MappingViewMO> ofHostGroup(const std::string& hostGroupID,
                                     const MappingViewMO& filter = MappingViewMO(),
                                     unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<MappingViewQuery>(&CMappingViewHandler::getMappingViewByHostGroup, hostGroupID, filter,
                                       pageSize);
    }
};

/** iSCSI initiators. */
class IscsiInitiators : public Face<CIscsiInitiatorHandler>
{
public:
    using Face::Face;
    /** As CIscsiInitiatorHandler::createIscsiInitiator. @param initiator as there, kept as it is. @return as
     * it. */
    IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO initiator) const
    {
        return (*this)->createIscsiInitiator(initiator);
    }
    /** As CIscsiInitiatorHandler::modifyIscsiInitiator. @param initiator as there, kept as it is. */
    void modifyIscsiInitiator(IscsiInitiatorMO initiator) const { (*this)->modifyIscsiInitiator(initiator); }
};

/** FC initiators. */
class FCInitiators : public Face<CFCInitiatorHandler>
{
public:
    using Face::Face;
    /** As CFCInitiatorHandler::createFCInitiator. @param initiator as there, kept as it is. @return as it. */
    FCInitiatorMO createFCInitiator(FCInitiatorMO initiator) const
    {
        return (*this)->createFCInitiator(initiator);
    }
};

/** FC ports. */
class FCPorts : public Face<CFCPortHandler>
{
public:
    using Face::Face;
    /**
     * All FC ports; the set fields of filter select, as in FCPortQuery.
     * @param filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<FCPortMO> all(const FCPortMO& filter = FCPortMO(), unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<FCPortQuery>(&CFCPortHandler::getFCPortBatch, filter, pageSize);
    }
};

/** FCoE ports. */
class FCoEPorts : public Face<CFCoEPortHandler>
{
public:
    using Face::Face;
    /**
     * All FCoE ports; the set fields of filter select, as in FCoEPortQuery.
     * @param filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<FCoEPortMO> all(const FCoEPortMO& filter = FCoEPortMO(),
                          unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<FCoEPortQuery>(&CFCoEPortHandler::getFCoEPortBatch, filter, pageSize);
    }
};

/** Ethernet ports. */
class ETHPorts : public Face<CETHPortHandler>
{
public:
    using Face::Face;
    /**
     * All Ethernet ports; the set fields of filter select, as in ETHPortQuery.
     * @param filter,pageSize whose, which, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    Pages<ETHPortMO> all(const ETHPortMO& filter = ETHPortMO(),
                         unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<ETHPortQuery>(&CETHPortHandler::getETHPortBatch, filter, pageSize);
    }
};

/** The attach workflow; takes everything as it is. */
class DiskAttach : public Face<CDiskAttachHandler>
{
public:
    using Face::Face;
};

/** The disks of this host. */
class DiskScanner : public Face<CDiskScannerHandler>
{
public:
    using Face::Face;
    /** As CDiskScannerHandler::scanLunAfterAttach. @param lunID as there, kept as it is. @return as it. */
    std::string scanLunAfterAttach(std::string lunID) const { return (*this)->scanLunAfterAttach(lunID); }
    /** As CDiskScannerHandler::scanSnapshotAfterAttach. @param snapshotID as there, kept as it is. @return as
     * it. */
    std::string scanSnapshotAfterAttach(std::string snapshotID) const
    {
        return (*this)->scanSnapshotAfterAttach(snapshotID);
    }
    /** As CDiskScannerHandler::scanLunBeforeDetach. @param lunID as there, kept as it is. */
    void scanLunBeforeDetach(std::string lunID) const { (*this)->scanLunBeforeDetach(lunID); }
    /** As CDiskScannerHandler::scanSnapshotBeforeDetach. @param snapshotID as there, kept as it is. */
    void scanSnapshotBeforeDetach(std::string snapshotID) const
    {
        (*this)->scanSnapshotBeforeDetach(snapshotID);
    }
};

} // namespace tessel
} // namespace ovra

#endif
