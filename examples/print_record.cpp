// Prints every field of an initiator that is set, by walking over the record: its fields are not written out.

#include <tessel/Array.h>
#include <tessel/Fields.h>

#include <cstdlib>
#include <iostream>

using ovra::tessel::Array;

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
    try {
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        print(array.iscsiInitiators()->getIscsiInitiator(argv[4]));
        return 0;
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
