#include "FuzzTarget.h"

#include "host/DiskScannerHandlerImpl.h"

#include <ovra/disk/Page83.h>

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string page(data, data + size);
    const size_t length = size > 7 ? data[7] : 0;
    const auto identity = ovra::disk::parsePage83(page);
    mustHold(identity.has_value() == (length < 32), "only long designators are refused");
    if (identity) {
        mustHold(identity->wwn.size() == 2 * length, "every byte is two digits");
        mustHold(identity->wwn.find_first_not_of("0123456789abcdef") == std::string::npos,
                 "the WWN is lowercase");
        mustHold(identity->lunId.size() <= 11 &&
                     identity->lunId.find_first_not_of("-0123456789") == std::string::npos,
                 "the LUN ID is a number");
    }
    for (const std::string& designator : ovra::disk::unitDesignators(page)) {
        mustHold(!designator.empty() && designator.size() <= 2 * size, "a designator is of the page");
    }

    CDiskScannerHandlerImpl scanner;
    std::string text = page;
    char decimal[11] = {};
    scanner.HextoDec(decimal, text.data(), sizeof(decimal));
    mustHold(decimal[10] == '\0', "the number is terminated");
    return 0;
}
