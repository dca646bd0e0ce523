// A tour of the array's side: log in, create a LUN, read it, list it, show it to a host, take it away, log
// out. It tells every step, so that it can be read along with the logs that it leaves.

#include <tessel/Array.h>

#include <cstdlib>
#include <ctime>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

using ovra::tessel::Array;

namespace {

const unsigned long MIB = 1024UL * 1024UL;

void step(const std::string& text)
{
    std::cout << "\n== " << text << std::endl;
}

void show(const LunMO& lun)
{
    std::cout << "   LUN " << lun.ID << "  " << lun.NAME << "  " << lun.CAPACITY / MIB << " MiB  WWN "
              << lun.WWN << "\n   exposed to a host: " << (lun.EXPOSEDTOINITIATOR ? "yes" : "no")
              << std::endl;
}

LunMO createLun(const Array& array, const std::string& pool, const std::string& name)
{
    step("Create a thin LUN of 64 MiB in storage pool " + pool);
    LunMO wanted;
    wanted.NAME = name;
    wanted.PARENTID = pool;
    wanted.CAPACITY = 64 * MIB;
    wanted.ALLOCTYPE = 1;
    wanted.ALLOCCAPACITY = 0;
    LunMO made = array.luns().createLun(wanted);
    if (made.ID.empty()) {
        throw std::runtime_error("the LUN was created but cannot be read yet: look for it by its name " +
                                 name);
    }
    show(made);
    return made;
}

void listByGroup(const Array& array, const LunMO& lun)
{
    step("Put it into a LUN group of its own and list that group");
    LunGroupMO wanted;
    wanted.NAME = lun.NAME + "_group";
    const LunGroupMO group = array.lunGroups().createLunGroup(wanted);
    array.lunGroups()->addLunToLunGroup(lun.ID, group.ID);
    for (const LunMO& found : array.luns().ofLunGroup(group.ID)) {
        show(found);
    }
    array.lunGroups()->removeLunFromLunGroup(lun.ID, group.ID);
    array.lunGroups()->deleteLunGroup(group.ID);
}

/** The LUNs that the initiator's host sees. */
void showHost(const Array& array, const std::string& initiator)
{
    const IscsiInitiatorMO known = array.iscsiInitiators()->getIscsiInitiator(initiator);
    const HostMO host = array.hosts()->getHost(known.PARENTID);
    const std::vector<LunMO> seen = array.luns().ofHost(host.ID).all();
    std::cout << "   host " << host.NAME << " sees " << seen.size() << " LUN(s)" << std::endl;
    for (const LunMO& lun : seen) {
        show(lun);
    }
}

void attachAndDetach(const Array& array, const LunMO& lun, const std::string& initiator)
{
    step("Register the initiator " + initiator);
    IscsiInitiatorMO wanted;
    wanted.ID = initiator;
    array.iscsiInitiators().createIscsiInitiator(wanted);

    step("Attach the LUN to the initiator's host");
    array.diskAttach()->attachLunToHost(lun.ID, initiator, "192.0.2.10");
    showHost(array, initiator);
    step("Detach it again");
    array.diskAttach()->detachLunFromHost(lun.ID, initiator);
    showHost(array, initiator);
}

void tour(const Array& array, const std::string& pool)
{
    const std::string mark = std::to_string(std::time(nullptr));
    const LunMO lun = createLun(array, pool, "tour_" + mark);
    step("Read it back by its ID");
    show(array.luns()->getLun(lun.ID));
    listByGroup(array, lun);
    attachAndDetach(array, lun, "iqn.2026-01.example.host:tour-" + mark);
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 5 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... tour ADDRESS PORT USER POOL-ID\n";
        return 2;
    }
    try {
        Array array; // ends the session with its scope, whatever happens
        step(std::string("Log in to ") + argv[1] + " port " + argv[2] + " as " + argv[3]);
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        tour(array, argv[4]);
        step("Log out");
        return array.logout() ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << "   " << e.what() << std::endl;
        return 1;
    }
}
