#ifndef HOST_FILECONTENT_H
#define HOST_FILECONTENT_H

#include <string>

namespace ovra::tessel {

/** The bytes of a file; none, or what came before the error, when it cannot be read. */
std::string contentOf(const std::string& path);

} // namespace ovra::tessel

#endif
