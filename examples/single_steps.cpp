// What ovra::tessel::LocalDisk does at once, in single steps: show a LUN to this host, find its disk, remove
// it from the host, hide the LUN. Needs root, and a host whose iSCSI initiator is logged in to the array.

#include <tessel/Access.h>
#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

using ovra::tessel::Array;
using ovra::tessel::HostInitiator;
using ovra::tessel::StorageObject;

namespace {

std::string findDisk(const Array& array, const std::string& lunId)
{
    std::string path = array.diskScanner().scanLunAfterAttach(lunId);
    if (path.empty()) {
        throw std::runtime_error("the disk was not found: see the run log");
    }
    return path;
}

void goThere(const Array& array, const std::string& lunId, const std::string& initiator)
{
    const StorageObject volume = StorageObject::lun(lunId);
    const HostInitiator host = HostInitiator::iscsi(initiator);
    ensureVisible(array.manager(), volume, host);
    std::cout << findDisk(array, lunId) << std::endl;
}

void goBack(const Array& array, const std::string& lunId, const std::string& initiator)
{
    array.diskScanner().scanLunBeforeDetach(lunId);
    const StorageObject volume = StorageObject::lun(lunId);
    const HostInitiator host = HostInitiator::iscsi(initiator);
    ensureHidden(array.manager(), volume, host);
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... single_steps ADDRESS PORT USER LUN-ID INITIATOR-NAME\n";
        return 2;
    }
    try {
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        goThere(array, argv[4], argv[5]);
        goBack(array, argv[4], argv[5]);
        return 0;
    } catch (const std::exception& e) {
        std::cerr << e.what() << std::endl;
        return 1;
    }
}
