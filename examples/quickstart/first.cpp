#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... first ADDRESS PORT USER\n";
        return 2;
    }
    try {
        ovra::tessel::Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);

        LunMO wanted;
        wanted.NAME = "first_volume";
        wanted.PARENTID = "0"; // the storage pool
        wanted.CAPACITY = 1024UL * 1024 * 1024;
        const LunMO lun = array.luns().createLun(wanted);
        std::cout << "LUN " << lun.ID << " " << lun.NAME << ": " << lun.CAPACITY << " bytes, WWN " << lun.WWN
                  << "\n";
        return 0;
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
