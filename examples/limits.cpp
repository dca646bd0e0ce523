// An array that is trusted by its own key, calls that end within ten seconds, and a session that is opened
// again when the array has ended it.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>

using namespace ovra::tessel;

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 5 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... limits ADDRESS PORT USER PIN\n";
        return 2;
    }
    const std::string user = argv[3];
    Array array;
    TransportOptions trust;
    trust.pinnedKey = argv[4];
    setTransport(array.manager(), trust); // of this array alone
    setCredentials(array.manager(), [=](Credentials& who) {
        who.userName = user;
        who.password = password;
        return true;
    });
    try {
        const CallLimit limit(std::chrono::seconds(10)); // of all calls of this thread, until it goes
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), user, password);
        ETHPortQuery all;
        std::cout << array.ethPorts()->getETHPortBatch(all).size() << " Ethernet ports\n";
        return 0;
    } catch (const OvraAPIException& thrown) {
        const Failure why = failureOf(thrown);
        std::cerr << (why.kind == FailureKind::TIMED_OUT ? "too late: " : "") << why.message << "\n";
        return 1;
    }
}
