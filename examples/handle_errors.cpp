// Reads a LUN and tells the four ways apart in which that can end: the LUN, no such LUN, an error of the
// array, and no answer.

#include <tessel/Array.h>

#include <cstdlib>
#include <iostream>
#include <string>

using ovra::tessel::Array;

namespace {

enum Result
{
    FOUND = 0,
    NOT_FOUND = 3,
    REFUSED = 4,
    NO_ANSWER = 5
};

// No code for an unknown ID is the same on every array: it is the one for an ID that no LUN can have.
bool isUnknownId(const Array& array, int code)
{
    try {
        array.luns()->getLun("4294967294");
    } catch (const OvraAPIExceptionWithErrCode& e) {
        return e.getErrCode() == code;
    }
    return false;
}

Result readLun(Array& array, const std::string& id)
{
    try {
        const LunMO lun = array.luns()->getLun(id);
        if (lun.ID.empty()) { // some arrays answer so for an ID that they do not know
            std::cout << "there is no LUN " << id << "\n";
            return NOT_FOUND;
        }
        std::cout << "LUN " << lun.ID << " is " << lun.NAME << "\n";
        return FOUND;
    } catch (const OvraAPIExceptionWithErrCode& e) { // the array answered with an error
        if (!array.keepAlive()) {
            std::cout << "the session has ended: log in again\n";
        } else if (isUnknownId(array, e.getErrCode())) {
            std::cout << "there is no LUN " << id << "\n";
            return NOT_FOUND;
        }
        std::cout << "code " << e.getErrCode() << ": " << e.what() << "\n";
        return REFUSED;
    } catch (const OvraAPIException& e) { // an argument was refused, or there was no answer to be read
        std::cout << e.what() << "\n";
        return NO_ANSWER;
    }
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 5 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... handle_errors ADDRESS PORT USER LUN-ID\n";
        return 2;
    }
    try {
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        return readLun(array, argv[4]);
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
