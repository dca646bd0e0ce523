#ifndef SIMULATOR_EXPORT_DATACOPY_H
#define SIMULATOR_EXPORT_DATACOPY_H

#include <filesystem>
#include <system_error>

namespace arraysim {

/**
 * Makes the file to with the contents of from: sharing its blocks where the file system can do that, else
 * with its data alone, so that holes cost neither time nor memory. Throws std::system_error; nothing is left
 * then.
 */
void copyData(const std::filesystem::path& from, const std::filesystem::path& to);

/** Makes an empty file of this size, or changes the size of one. Throws std::system_error. */
void makeSparse(const std::filesystem::path& file, std::uintmax_t size);

} // namespace arraysim

#endif
