// Works on a session that another program opened: no password is needed, and the session stays open.

#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    const char* const deviceId = std::getenv("TESSEL_DEVICE_ID");
    const char* const token = std::getenv("TESSEL_TOKEN");
    const char* const cookie = std::getenv("TESSEL_COOKIE");
    if (argc != 3 || deviceId == nullptr || token == nullptr || cookie == nullptr) {
        std::cerr
            << "usage: TESSEL_DEVICE_ID=... TESSEL_TOKEN=... TESSEL_COOKIE=... adopt_session ADDRESS PORT\n";
        return 2;
    }
    try {
        ovra::tessel::Array array; // its end forgets the session, and does not end it
        array.adopt(argv[1], std::strtoul(argv[2], nullptr, 10), deviceId, token, cookie);
        // Adopting sends nothing: this tells whether the session is alive.
        const bool alive = array.keepAlive();
        std::cout << (alive ? "the session is alive\n" : "the session has ended\n");
        return alive ? 0 : 1;
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
