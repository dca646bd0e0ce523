// A tour of the array's side: log in, create a LUN, read it, list it, show it to a host, take it away, log
// out. It tells every step, so that it can be read along with the logs that it leaves.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <ctime>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

const unsigned long MIB = 1024UL * 1024UL;

template <class Handler>
Handler& handlerOf(CDeviceManager& array, HANDLERTYPE type)
{
    return *static_cast<Handler*>(array.getHandler(type));
}

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

LunMO createLun(CDeviceManager& array, const std::string& pool, const std::string& name)
{
    step("Create a thin LUN of 64 MiB in storage pool " + pool);
    LunMO wanted;
    wanted.NAME = name;
    wanted.PARENTID = pool;
    wanted.CAPACITY = 64 * MIB;
    wanted.ALLOCTYPE = 1;
    wanted.ALLOCCAPACITY = 0;
    const LunMO made = handlerOf<CLunHandler>(array, LUN_HANDLER).createLun(wanted);
    if (made.ID.empty()) {
        throw std::runtime_error("the LUN was created but cannot be read yet: look for it by its name " +
                                 name);
    }
    show(made);
    return made;
}

void listByGroup(CDeviceManager& array, const LunMO& lun)
{
    step("Put it into a LUN group of its own and list that group");
    CLunGroupHandler& groups = handlerOf<CLunGroupHandler>(array, LUNGROUP_HANDLER);
    LunGroupMO wanted;
    wanted.NAME = lun.NAME + "_group";
    const LunGroupMO group = groups.createLunGroup(wanted);
    groups.addLunToLunGroup(lun.ID, group.ID);
    LunQuery everything;
    for (const LunMO& found :
         handlerOf<CLunHandler>(array, LUN_HANDLER).getLunByLunGroup(group.ID, everything)) {
        show(found);
    }
    groups.removeLunFromLunGroup(lun.ID, group.ID);
    groups.deleteLunGroup(group.ID);
}

/** The LUNs that the initiator's host sees. */
void showHost(CDeviceManager& array, const std::string& initiator)
{
    const IscsiInitiatorMO known =
        handlerOf<CIscsiInitiatorHandler>(array, ISCSIINITIATOR_HANDLER).getIscsiInitiator(initiator);
    const HostMO host = handlerOf<CHostHandler>(array, HOST_HANDLER).getHost(known.PARENTID);
    LunQuery everything;
    const std::vector<LunMO> seen =
        handlerOf<CLunHandler>(array, LUN_HANDLER).getLunByHost(host.ID, everything);
    std::cout << "   host " << host.NAME << " sees " << seen.size() << " LUN(s)" << std::endl;
    for (const LunMO& lun : seen) {
        show(lun);
    }
}

void attachAndDetach(CDeviceManager& array, const LunMO& lun, const std::string& initiator)
{
    step("Register the initiator " + initiator);
    IscsiInitiatorMO wanted;
    wanted.ID = initiator;
    handlerOf<CIscsiInitiatorHandler>(array, ISCSIINITIATOR_HANDLER).createIscsiInitiator(wanted);

    CDiskAttachHandler& attach = handlerOf<CDiskAttachHandler>(array, DISKATTACH_HANDLER);
    step("Attach the LUN to the initiator's host");
    attach.attachLunToHost(lun.ID, initiator, "192.0.2.10");
    showHost(array, initiator);
    step("Detach it again");
    attach.detachLunFromHost(lun.ID, initiator);
    showHost(array, initiator);
}

int tour(CDeviceManager& array, char** argv, const char* password)
{
    step(std::string("Log in to ") + argv[1] + " port " + argv[2] + " as " + argv[3]);
    if (!array.loginDevice(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)), argv[3],
                           password, USERTYPE_LOCAL)) {
        std::cerr << "   refused: the reason is the last error line of the run log" << std::endl;
        return 1;
    }
    int result = 1;
    try {
        const std::string mark = std::to_string(std::time(nullptr));
        const LunMO lun = createLun(array, argv[4], "tour_" + mark);
        step("Read it back by its ID");
        show(handlerOf<CLunHandler>(array, LUN_HANDLER).getLun(lun.ID));
        listByGroup(array, lun);
        attachAndDetach(array, lun, "iqn.2026-01.example.host:tour-" + mark);
        result = 0;
    } catch (const std::exception& e) {
        std::cerr << "   " << e.what() << std::endl;
    }
    step("Log out");
    return array.logoutDevice() ? result : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 5 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... tour ADDRESS PORT USER POOL-ID\n";
        return 2;
    }
    CDeviceManager* const array = CDeviceManager::getInstance(3, 500000);
    const int result = tour(*array, argv, password);
    CDeviceManager::releaseInstance(array);
    return result;
}
