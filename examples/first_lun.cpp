// Prints one LUN.

#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... first_lun ADDRESS PORT LUN-ID\n";
        return 2;
    }
    try {
        ovra::tessel::Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), "admin", password);
        const LunMO lun = array.luns()->getLun(argv[3]);
        std::cout << lun.NAME << ": " << lun.CAPACITY << " bytes, WWN " << lun.WWN << "\n";
        return 0;
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
