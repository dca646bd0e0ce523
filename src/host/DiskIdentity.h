#ifndef HOST_DISKIDENTITY_H
#define HOST_DISKIDENTITY_H

#include "host/DiskScannerHandlerImpl.h"

#include <string>

namespace ovra::tessel {

/** What a device says it is; empty texts when it cannot be read, whatever was read before. */
struct DiskIdentity
{
    DiskIdentity(CDiskScannerHandlerImpl& scanner, std::string path)
    {
        scanner.GetDisk83Page(path, wwn, lunId);
    }

    std::string wwn;
    std::string lunId;
};

} // namespace ovra::tessel

#endif
