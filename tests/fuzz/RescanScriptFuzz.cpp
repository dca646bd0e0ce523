#include "FuzzTarget.h"

#include <ovra/disk/RescanScript.h>

using namespace ovra::disk;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text = textOf(data, size);
    const bool hasWords =
        text.find("Device_type=") != std::string::npos || text.find("PQual=") != std::string::npos;
    mustHold(!readsOnlyOldInquiry(text) || hasWords, "without the old words there is no fault");
    mustHold(!printsOldInquiry(text) || text.find("PDT=") == std::string::npos,
             "the new word is not an old one");
    findInPath("tool", text.substr(0, text.find('\0')));
    return 0;
}
