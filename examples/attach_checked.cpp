// Attaches a LUN to the host of an initiator, and makes sure that the host sees it: parts of an attach that
// fail may be told by the run log alone.

#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>
#include <string>

using ovra::tessel::Array;

namespace {

bool isVisible(const Array& array, const std::string& lunId, const std::string& initiatorName)
{
    const IscsiInitiatorMO initiator = array.iscsiInitiators()->getIscsiInitiator(initiatorName);
    if (initiator.PARENTID.empty()) {
        return false;
    }
    LunMO wanted;
    wanted.ID = lunId;
    return !array.luns().ofHost(initiator.PARENTID, wanted).all().empty();
}

bool attach(const Array& array, const std::string& lunId, const std::string& initiatorName)
{
    if (array.diskAttach()->attachLunToHost(lunId, initiatorName, "192.0.2.10") == 1) {
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
    try {
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        return attach(array, argv[4], argv[5]) ? 0 : 1;
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
