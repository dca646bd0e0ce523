#ifndef SESSION_SESSIONKEYS_H
#define SESSION_SESSIONKEYS_H

/**
 * The session keys of the live device managers. A request names its session by 32 bits of an address: two
 * device managers in heaps a multiple of 4 GiB apart would share them, and with them a session. Thread-safe.
 */
namespace ovra::tessel::SessionKeys {

/** False when a live device manager has the key, or the key is 0. */
bool claim(unsigned int key);
void release(unsigned int key);

} // namespace ovra::tessel::SessionKeys

#endif
