// Attaches a LUN to the host of an initiator, and makes sure that the host sees it: parts of an attach that
// fail may be told by the run log alone.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

template <class Handler>
Handler& handlerOf(CDeviceManager& array, HANDLERTYPE type)
{
    return *static_cast<Handler*>(array.getHandler(type));
}

bool isVisible(CDeviceManager& array, const std::string& lunId, const std::string& initiatorName)
{
    const IscsiInitiatorMO initiator =
        handlerOf<CIscsiInitiatorHandler>(array, ISCSIINITIATOR_HANDLER).getIscsiInitiator(initiatorName);
    if (initiator.PARENTID.empty()) {
        return false;
    }
    LunQuery query;
    query.filter.ID = lunId;
    query.count = 1;
    return !handlerOf<CLunHandler>(array, LUN_HANDLER).getLunByHost(initiator.PARENTID, query).empty();
}

bool attach(CDeviceManager& array, const std::string& lunId, const std::string& initiatorName)
{
    CDiskAttachHandler& disks = handlerOf<CDiskAttachHandler>(array, DISKATTACH_HANDLER);
    if (disks.attachLunToHost(lunId, initiatorName, "192.0.2.10") == 1) {
        std::cout << "the host saw the LUN before\n";
        return true;
    }
    if (isVisible(array, lunId, initiatorName)) {
        std::cout << "the host sees the LUN\n";
        return true;
    }
    std::cout << "the host does not see the LUN: the run log says why\n";
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... attach_checked ADDRESS PORT USER LUN-ID INITIATOR-NAME\n";
        return 2;
    }
    CDeviceManager* const array = CDeviceManager::getInstance(3, 500000);
    int result = 1;
    if (array->loginDevice(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)), argv[3],
                           password, USERTYPE_LOCAL)) {
        try {
            result = attach(*array, argv[4], argv[5]) ? 0 : 1;
        } catch (const OvraAPIException& e) {
            std::cerr << e.what() << "\n";
        }
        array->logoutDevice();
    }
    CDeviceManager::releaseInstance(array);
    return result;
}
