#ifndef SDK_NEXTSECOND_H
#define SDK_NEXTSECOND_H

/** Moves time(), for the whole process, one second on: generated names carry whole seconds, and tests do not
 * wait. */
void nextSecond();

#endif
