#include <cstdlib>
#include <iostream>
#include <tessel/Tessel.h>

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... first_lun ADDRESS PORT LUN-ID\n";
        return 2;
    }
    CDeviceManager* array = CDeviceManager::getInstance(3, 500000);
    int result = 1;
    if (array->loginDevice(argv[1], std::strtoul(argv[2], nullptr, 10), "admin", password, USERTYPE_LOCAL)) {
        try {
            CLunHandler* luns = static_cast<CLunHandler*>(array->getHandler(LUN_HANDLER));
            const LunMO lun = luns->getLun(argv[3]);
            std::cout << lun.NAME << ": " << lun.CAPACITY << " bytes, WWN " << lun.WWN << "\n";
            result = 0;
        } catch (const OvraAPIException& e) {
            std::cerr << e.what() << "\n";
        }
        array->logoutDevice();
    }
    CDeviceManager::releaseInstance(array);
    return result;
}
