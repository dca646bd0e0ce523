// A program as users of the installed library write it: C++11, the exported headers alone.
#include <ovra/rest/RestSettings.h>
#include <tessel/Tessel.h>

#include <cstring>
#include <iostream>

int main()
{
    // How arrays are trusted is set through the REST library, which comes with the SDK.
    RestSettings settings = RestGetSettings();
    settings.timeoutSeconds = 7;
    RestSetSettings(settings);
    if (RestGetSettings().timeoutSeconds != 7) {
        std::cerr << "the settings are not kept\n";
        return 1;
    }

    CDeviceManager* manager = CDeviceManager::getInstance(3, 500000);
    CLunHandler* luns = dynamic_cast<CLunHandler*>(manager->getHandler(LUN_HANDLER));
    if (luns == nullptr) {
        std::cerr << "there is no LUN handler\n";
        return 1;
    }

    LunMO lun;
    lun.NAME = "from outside";
    for (const RecordField& field : fieldsOf(lun)) {
        if (field.isSet) {
            std::cout << field.name << " = " << field.value << "\n";
        }
    }

    // Exceptions of the library are known by their type on this side of it.
    bool refused = false;
    try {
        luns->getLun("");
    } catch (const OvraAPIException& exception) {
        refused = std::strncmp(exception.what(), "Exception:", 10) == 0;
        std::cout << exception.what() << "\n";
    }
    CDeviceManager::releaseInstance(manager);
    return refused ? 0 : 1;
}
