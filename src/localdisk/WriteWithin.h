#ifndef LOCALDISK_WRITEWITHIN_H
#define LOCALDISK_WRITEWITHIN_H

#include <chrono>
#include <functional>
#include <string>

namespace ovra::tessel {

/** A step that writes to a file of the kernel; "" when it was taken, else why not. */
std::function<std::string()> writing(const std::string& file, const std::string& text);

/** Does that. */
std::string writeWithin(std::chrono::seconds limit, const std::string& file, const std::string& text);

} // namespace ovra::tessel

#endif
