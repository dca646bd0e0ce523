#include "FuzzTarget.h"

#include <ovra/disk/Lsscsi.h>

using namespace ovra::disk;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    for (const std::string& line : linesOf(textOf(data, size))) {
        const auto device = diskOfLine(line);
        if (device) {
            mustHold(isPlain(*device) && isDiskName(lastName(*device)), "the device is a disk");
            mustHold(wordsOf(line).back() == *device, "the name is the line's whole last word");
        }
        for (const std::string& asked : {device.value_or("/dev/sda"), std::string("/dev/sdaa")}) {
            const auto address = addressOfLine(line, asked);
            if (address) {
                mustHold(isPlain(address->text) && isPlain(address->host) && isPlain(address->lun),
                         "the address is nothing but numbers");
                mustHold(line.rfind("[" + address->text + "]", 0) == 0, "the address is the line's own");
                mustHold(wordsOf(line).back() == asked, "the line is the device's");
            }
        }
    }
    return 0;
}
