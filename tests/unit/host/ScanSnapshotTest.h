#ifndef HOST_SCANSNAPSHOTTEST_H
#define HOST_SCANSNAPSHOTTEST_H

#include "ScannerTest.h"

class ScanSnapshot : public ScannerTest
{
protected:
    /** sdc carries the snapshot and the Korvex product is installed. */
    void connect()
    {
        seam.addDisk("sdc", WWN);
        seam.prints(fastListing(), {byIdLine("scsi-3" + std::string(WWN), "sdc")});
    }

    const std::string path = "/dev/disk/by-id/../../sdc";
};

#endif
