// A program that links the static library and has a name of its own for something inside it.
// Usage: PROGRAM IP PORT
#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>

/** True when the program's own name still means what the program made of it. */
bool ownNameWorks();

namespace {

/** A failure goes another way through the library than a success, and destroys other objects. */
bool isRefused(CLunHandler& luns)
{
    try {
        luns.getLun("");
    } catch (const OvraAPIException&) {
        return true;
    }
    return false;
}

} // namespace

int main(int, char** arguments)
{
    CDeviceManager* const array = CDeviceManager::getInstance(3, 1000);
    const unsigned int port = static_cast<unsigned int>(std::atoi(arguments[2]));
    if (!array->loginDevice(arguments[1], port, "admin", std::getenv("TESSEL_ARRAYSIM_PASSWORD"),
                            USERTYPE_LOCAL)) {
        std::cerr << "there is no session\n";
        return 1;
    }
    CLunHandler* const luns = dynamic_cast<CLunHandler*>(array->getHandler(LUN_HANDLER));
    LunMO wanted;
    wanted.NAME = "own-name";
    wanted.PARENTID = "0";
    wanted.CAPACITY = 1 << 20;
    LunMO lun = luns->getLun(luns->createLun(wanted).ID);
    const bool refused = isRefused(*luns);

    CDiskScannerHandler* const scanner =
        dynamic_cast<CDiskScannerHandler*>(array->getHandler(DISKSCANNER_HANDLER));
    const std::string disk = scanner->scanLunAfterAttach(lun.ID);
    scanner->scanLunBeforeDetach(lun.ID);
    const bool ended = array->logoutDevice();
    CDeviceManager::releaseInstance(array);
    return lun.NAME == wanted.NAME && refused && disk.empty() && ended && ownNameWorks() ? 0 : 1;
}
