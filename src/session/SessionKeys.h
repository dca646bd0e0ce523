#ifndef SESSION_SESSIONKEYS_H
#define SESSION_SESSIONKEYS_H

namespace ovra::tessel {

/**
 * The session keys of the live device managers. A request names its session by 32 bits of an address: two
 * device managers in heaps a multiple of 4 GiB apart would share them, and with them a session. Thread-safe.
 */
namespace SessionKeys {

/** False when a live device manager has the key, or the key is 0. */
bool claim(unsigned int key);
void release(unsigned int key);

} // namespace SessionKeys

} // namespace ovra::tessel

#endif
