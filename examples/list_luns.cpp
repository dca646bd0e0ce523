// Lists the LUNs and snapshots that the host of an initiator sees, a page at a time.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

const unsigned long PAGE = 100;

template <class Handler>
Handler& handlerOf(CDeviceManager& array, HANDLERTYPE type)
{
    return *static_cast<Handler*>(array.getHandler(type));
}

void printLuns(CDeviceManager& array, const std::string& hostId, const std::string& name)
{
    CLunHandler& luns = handlerOf<CLunHandler>(array, LUN_HANDLER);
    LunQuery query;
    query.filter.NAME = name; // an empty name does not filter
    query.count = PAGE;
    std::vector<LunMO> page;
    do {
        page = luns.getLunByHost(hostId, query);
        for (const LunMO& lun : page) {
            std::cout << "LUN " << lun.ID << " " << lun.NAME << " " << lun.WWN << "\n";
        }
        query.start += PAGE;
    } while (page.size() == PAGE);
}

void printSnapshots(CDeviceManager& array, const std::string& hostId)
{
    SnapshotQuery everything;
    for (const SnapshotMO& snapshot :
         handlerOf<CSnapshotHandler>(array, SNAPSHOT_HANDLER).getSnapshotByHost(hostId, everything)) {
        std::cout << "snapshot " << snapshot.ID << " of LUN " << snapshot.PARENTID << " " << snapshot.NAME
                  << " " << snapshot.WWN << "\n";
    }
}

int list(CDeviceManager& array, const std::string& initiatorName, const std::string& lunName)
{
    const IscsiInitiatorMO initiator =
        handlerOf<CIscsiInitiatorHandler>(array, ISCSIINITIATOR_HANDLER).getIscsiInitiator(initiatorName);
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
    CDeviceManager* const array = CDeviceManager::getInstance(3, 500000);
    int result = 1;
    if (array->loginDevice(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)), argv[3],
                           password, USERTYPE_LOCAL)) {
        try {
            result = list(*array, argv[4], argc == 6 ? argv[5] : "");
        } catch (const OvraAPIException& e) {
            std::cerr << e.what() << "\n";
        }
        array->logoutDevice();
    }
    CDeviceManager::releaseInstance(array);
    return result;
}
