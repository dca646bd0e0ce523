#ifndef TEXT_NUMBERS_H
#define TEXT_NUMBERS_H

#include <cstdint>
#include <string>

namespace tesselctl {

/** A decimal number from low to high; throws UsageError that names what was given for `what`. */
uint64_t parseNumber(const std::string& what, const std::string& text, uint64_t low, uint64_t high);

/**
 * A capacity in bytes, as people write it: 1073741824, 10GiB, 10G, 1.5TiB, 500MB.
 * K, M, G, T, P and the same with iB are powers of 1024; KB, MB ... are powers of 1000. Case does not matter.
 * Throws UsageError for anything else, for 0, for what is no whole number of bytes and for 2^64-1 and more.
 */
uint64_t parseSize(const std::string& what, const std::string& text);

/** "10 GiB", "1.5 TiB", "512 B"; what cannot be told exactly in two decimals begins with "~". */
std::string humanSize(uint64_t bytes);

} // namespace tesselctl

#endif
