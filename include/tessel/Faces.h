#ifndef TESSEL_FACES_H
#define TESSEL_FACES_H

/** @file
 * The handlers, for const arguments, temporaries and pages. Header only. */

#include <tessel/AccessFaces.h>
#include <tessel/StorageFaces.h>

#include <string>

namespace ovra {
namespace tessel {

/** FC ports. */
class FCPorts : public Face<CFCPortHandler>
{
public:
    using Face::Face;
    /** All FC ports. @param filter,pageSize as in Face. @return the list, unread. */
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
    /** All FCoE ports. @param filter,pageSize as in Face. @return the list, unread. */
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
    /** All Ethernet ports. @param filter,pageSize as in Face. @return the list, unread. */
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
    /** As CDiskScannerHandler::scanSnapshotAfterAttach. @param snapshotID as there, kept. @return as it. */
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
