#include "FuzzTarget.h"

#include "host/DiskScannerHandlerImpl.h"

#include <algorithm>

using namespace ovra::tessel;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<unsigned char> page(data, data + std::min<size_t>(size, 256));
    page.resize(256); // as a device that sent less leaves the buffer
    CDiskScannerHandlerImpl scanner;
    std::string wwn = "before", lunId = "before";
    if (scanner.ParseDisk83Page(page.data(), wwn, lunId) != 0) {
        mustHold(wwn == "before" && lunId == "before", "a page that is refused changes nothing");
        mustHold(page[7] >= 32, "only long designators are refused");
        return 0;
    }
    mustHold(wwn.size() == 2u * page[7], "every byte is two digits");
    mustHold(wwn.find_first_not_of("0123456789abcdef") == std::string::npos, "the WWN is lowercase");
    mustHold(lunId.size() <= 10 && lunId.find_first_not_of("-0123456789") == std::string::npos,
             "the LUN ID is a number");

    std::string text(data, data + size);
    char decimal[11] = {};
    scanner.HextoDec(decimal, text.data(), sizeof(decimal));
    mustHold(decimal[10] == '\0', "the number is terminated");
    return 0;
}
