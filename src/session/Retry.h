#ifndef SESSION_RETRY_H
#define SESSION_RETRY_H

/** How many times a create reads its new object again; set by the first device manager. */
extern unsigned int gRetryTimes;

/** Pause before each of these reads, in microseconds. */
extern unsigned int gRetrySleepTimeMicroSeconds;

namespace ovra::tessel {

/** The array's answers while a new object is not yet readable, or a LUN group is busy. */
const int NOT_YET_READABLE = 1077949006;
const int LUNGROUP_BUSY = 1077949001;

} // namespace ovra::tessel

#endif
