#ifndef OVRA_DISK_FILES_H
#define OVRA_DISK_FILES_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace ovra::disk {

/** The bytes of a file; none, with errno set, when it cannot be read to its end. */
std::optional<std::string> readFile(const std::string& path);

/** The same, empty when it cannot be read. */
std::string contentOf(const std::string& path);

/** The first line of a file, as the kernel's files of one value have it; empty when it cannot be read. */
std::string valueOf(const std::string& path);

/** Writes to a file of the kernel, where it exists; false, with errno set, when it does not take it. */
bool writeFile(const std::string& path, const std::string& text);

/** The lines of a text; the last one need not end in a newline. */
std::vector<std::string> linesOf(const std::string& text);

/** The names in a directory in ascending order; none when it cannot be read. */
std::vector<std::string> namesIn(const std::string& directory);

/** Where a symbolic link leads, as it is written; empty when it is none. */
std::string targetOf(const std::string& link);

/** Something of the host is there and cannot be read: what it says is not known, and not that there is
 * nothing. */
struct Unreadable : std::runtime_error
{
    explicit Unreadable(const std::string& path, int why = 0);

    int error; ///< errno; 0 for a file that has always something, and has nothing
};

/** As contentOf, valueOf, namesIn and targetOf, where nothing is taken for absent but what is: throw
 * Unreadable else.
 */
std::string contentThere(const std::string& path);
std::string valueThere(const std::string& path);
std::vector<std::string> namesThere(const std::string& directory);
std::string targetThere(const std::string& link);

/** Whether there is something of this name. Throws Unreadable where that cannot be told. */
bool isThere(const std::string& path);

} // namespace ovra::disk

#endif
