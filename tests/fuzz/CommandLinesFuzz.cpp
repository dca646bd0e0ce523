#include "FuzzTarget.h"

#include "host/CommandLines.h"
#include "support/HostSeam.h"
#include "support/RecordingPlatform.h"

#include <algorithm>

using namespace ovra::tessel;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    HostSeam seam;
    RecordingPlatform::get().reset();
    const std::string text = textOf(data, size);
    seam.prints("list", {text});
    std::vector<std::string> whole = linesOf(text);
    if (whole.back().empty()) {
        whole.pop_back(); // nothing stands behind the last newline
    }
    CommandLines listing("list");
    size_t number = 0;
    for (std::string line; listing.next(line); ++number) {
        mustHold(line.empty() || line == whole.at(number), "a line is whole or empty");
        mustHold(line.size() < 1023, "a line fits the buffer");
    }
    mustHold(number == whole.size(), "every line counts once");
    return 0;
}
