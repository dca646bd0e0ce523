#ifndef SIMULATOR_WATCH_SECRETS_H
#define SIMULATOR_WATCH_SECRETS_H

#include <functional>
#include <string>

namespace arraysim {

/** Whether a text holds a secret that is in force: the password, or a session's token or cookie. */
using HoldsSecret = std::function<bool(const std::string&)>;

/**
 * A target behind the device ID as logs and the journal may show it. What the array does not know as harmless
 * is not shown: a query with a parameter or a filter key that it does not know, or that names a secret field.
 */
std::string shownTarget(const std::string& target, const HoldsSecret& holdsSecret);

/**
 * A body as the journal may show it: as sent, but with "***" for the values of secret fields, and cut at 4
 * KiB. Only its size is told of what is not an object of the members that the array knows, since nothing
 * tells where a secret stands in it.
 */
std::string shownBody(const std::string& body, const HoldsSecret& holdsSecret);

/** What is told in place of a body that is not shown. */
std::string sizeAlone(const std::string& body);

} // namespace arraysim

#endif
