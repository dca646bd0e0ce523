#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... first ADDRESS PORT USER\n";
        return 2;
    }
    CDeviceManager* const array = CDeviceManager::getInstance(3, 500000);
    int result = 1;
    if (!array->loginDevice(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password, USERTYPE_LOCAL)) {
        std::cerr << "login refused: the reason is in the run log\n";
    } else {
        try {
            LunMO wanted;
            wanted.NAME = "first_volume";
            wanted.PARENTID = "0"; // the storage pool
            wanted.CAPACITY = 1024UL * 1024 * 1024;
            CLunHandler* const luns = static_cast<CLunHandler*>(array->getHandler(LUN_HANDLER));
            const LunMO lun = luns->createLun(wanted);
            std::cout << "LUN " << lun.ID << " " << lun.NAME << ": " << lun.CAPACITY << " bytes, WWN "
                      << lun.WWN << "\n";
            result = 0;
        } catch (const OvraAPIException& e) {
            std::cerr << e.what() << "\n";
        }
        array->logoutDevice();
    }
    CDeviceManager::releaseInstance(array);
    return result;
}
