#include "FuzzTarget.h"

#include "host/DeviceUse.h"

using namespace ovra::tessel;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text = textOf(data, size);
    const BlockDevices devices = {{"8:0", "sda"}, {"8:1", "sda1"}};
    const size_t lines = linesOf(text).size() * devices.size();
    mustHold(mountsOf(devices, text).size() <= lines, "at most one mount a line and device");
    mustHold(swapsOn(devices, text).size() <= lines, "at most one swap area a line and device");
    mustHold(mountsOf({}, text).empty() && swapsOn({}, text).empty(), "no device, no use");
    return 0;
}
