// usleep, replaced by one that writes the pause into the journal and does not wait.

#include "support/RecordingPlatform.h"

#include <unistd.h>

extern "C" int usleep(useconds_t microseconds)
{
    RecordingPlatform::get().note("usleep " + std::to_string(microseconds));
    return 0;
}
