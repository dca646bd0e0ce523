// Prints every field of an initiator that is set, by walking over the record: its fields are not written out.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>

namespace {

template <class Record>
void print(const Record& record)
{
    for (const RecordField& field : fieldsOf(record)) {
        if (field.isSet && !field.isSecret) {
            std::cout << field.name << ": " << field.value << "\n";
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 5 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... print_record ADDRESS PORT USER INITIATOR-NAME\n";
        return 2;
    }
    CDeviceManager* const array = CDeviceManager::getInstance(3, 500000);
    int result = 1;
    if (array->loginDevice(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)), argv[3],
                           password, USERTYPE_LOCAL)) {
        try {
            print(static_cast<CIscsiInitiatorHandler*>(array->getHandler(ISCSIINITIATOR_HANDLER))
                      ->getIscsiInitiator(argv[4]));
            result = 0;
        } catch (const OvraAPIException& e) {
            std::cerr << e.what() << "\n";
        }
        array->logoutDevice();
    }
    CDeviceManager::releaseInstance(array);
    return result;
}
