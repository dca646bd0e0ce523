#ifndef OVRA_REST_REQUESTTARGET_H
#define OVRA_REST_REQUESTTARGET_H

#include <string>

namespace ovra::rest {

/**
 * The path (with its query) as it goes into the request line: bytes that may not stand there raw are
 * percent-encoded, everything else, also "%41", "." and "..", stays as it is.
 */
std::string encodeRequestTarget(const std::string& path);

} // namespace ovra::rest

#endif
