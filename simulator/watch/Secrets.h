#ifndef SIMULATOR_WATCH_SECRETS_H
#define SIMULATOR_WATCH_SECRETS_H

#include <string>

namespace arraysim {

/**
 * The body for logs and the journal: as sent, but with every secret's value replaced by "***". A body
 * that is not JSON is not shown at all, since nothing tells where a secret stands in it.
 */
std::string withoutSecrets(const std::string& text);

} // namespace arraysim

#endif
