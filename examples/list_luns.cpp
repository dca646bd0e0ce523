// Lists the LUNs and snapshots that the host of an initiator sees, a page at a time.

#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>
#include <string>

using ovra::tessel::Array;

namespace {

void printLuns(const Array& array, const std::string& hostId, const std::string& name)
{
    LunMO named;
    named.NAME = name; // an empty name does not filter
    for (const LunMO& lun : array.luns().ofHost(hostId, named)) {
        std::cout << "LUN " << lun.ID << " " << lun.NAME << " " << lun.WWN << "\n";
    }
}

void printSnapshots(const Array& array, const std::string& hostId)
{
    for (const SnapshotMO& snapshot : array.snapshots().ofHost(hostId)) {
        std::cout << "snapshot " << snapshot.ID << " of LUN " << snapshot.PARENTID << " " << snapshot.NAME
                  << " " << snapshot.WWN << "\n";
    }
}

int list(const Array& array, const std::string& initiatorName, const std::string& lunName)
{
    const IscsiInitiatorMO initiator = array.iscsiInitiators()->getIscsiInitiator(initiatorName);
    if (initiator.PARENTID.empty()) {
        std::cerr << initiatorName << " belongs to no host\n";
        return 1;
    }
    printLuns(array, initiator.PARENTID, lunName);
    printSnapshots(array, initiator.PARENTID);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc < 5 || argc > 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... list_luns ADDRESS PORT USER INITIATOR-NAME [LUN-NAME]\n";
        return 2;
    }
    try {
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        return list(array, argv[4], argc == 6 ? argv[5] : "");
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
