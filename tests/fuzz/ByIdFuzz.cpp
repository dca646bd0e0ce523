#include "FuzzTarget.h"

#include <ovra/disk/ByIdLink.h>
#include <ovra/disk/Names.h>

using namespace ovra::disk;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    for (const std::string& line : linesOf(textOf(data, size))) {
        const auto link = ByIdLink::parse(line);
        if (!link) {
            continue;
        }
        const std::string name = lastName(link->path);
        mustHold(isPlain(link->path), "the path is nothing but a path");
        mustHold(link->path.rfind("/dev/disk/by-id/../", 0) == 0, "the path is one of the listing");
        mustHold(isNodeName(name), "the path leads to a node below /dev");
        mustHold(line.size() > name.size() &&
                     line.compare(line.size() - name.size() - 1, std::string::npos, "/" + name) == 0,
                 "the name is the line's whole last part");
        mustHold(line.find(link->identifier) != std::string::npos, "the identity is of this line");
        mustHold(link->identifier.find(' ') == std::string::npos, "the identity is one word");
    }
    return 0;
}
