#include "FuzzTarget.h"

#include <ovra/disk/Tables.h>

using namespace ovra::disk;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text = textOf(data, size);
    const size_t lines = linesOf(text).size();
    const std::vector<Mount> mounts = parseMounts(text);
    mustHold(mounts.size() <= lines, "at most one mount a line");
    for (const Mount& mount : mounts) {
        mustHold(!mount.device.empty() && text.find(mount.device) != std::string::npos,
                 "the number is of the text");
        mustHold(!mount.point.empty() && mount.point.size() <= size, "the mount point is of the text");
    }
    const std::vector<std::string> swaps = parseSwaps(text);
    mustHold(swaps.size() <= lines, "at most one swap area a line");
    for (const std::string& swap : swaps) {
        mustHold(swap[0] == '/', "a swap area is a path");
    }
    return 0;
}
