#ifndef LOCALDISK_WRITEWITHIN_H
#define LOCALDISK_WRITEWITHIN_H

#include <chrono>
#include <string>

namespace ovra::tessel {

/** Writes to a file of the kernel; "" when it was taken, else why not. */
std::string writeWithin(std::chrono::seconds limit, const std::string& file, const std::string& text);

} // namespace ovra::tessel

#endif
