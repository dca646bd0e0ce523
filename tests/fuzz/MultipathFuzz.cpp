#include "FuzzTarget.h"

#include <ovra/disk/Multipath.h>
#include <ovra/disk/Names.h>

using namespace ovra::disk;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text = textOf(data, size);
    for (const char* const node : {"dm-0", "dm-3", "dm-30"}) {
        const auto path = firstPathOf(node, linesOf(text));
        if (path) {
            mustHold(isDiskName(*path), "the path is a disk");
            mustHold(text.find(*path, text.find(node)) != std::string::npos,
                     "the path stands behind its node");
        }
    }
    return 0;
}
