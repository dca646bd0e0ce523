#include "ovra/disk/Page83.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

namespace ovra::disk {
namespace {

// A header of 4 bytes, then the designators, each with a header of 4 bytes of its own.
constexpr size_t HEADER = 4;
constexpr size_t LENGTH = 3; // its place in either header
constexpr size_t LONGEST_WWN = 31;
constexpr size_t ARRAY_LUN_ID = 20;
constexpr size_t LONGEST_LUN_ID = 10;
constexpr unsigned char DEVICE_IDENTIFICATION = 0x83;
constexpr unsigned char BINARY = 1;
constexpr unsigned char CODE_SET = 0x0F;
constexpr unsigned char ASSOCIATION = 0x30; // 0 is the logical unit

std::string hexOf(const std::string& bytes)
{
    constexpr const char* DIGITS = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += DIGITS[byte >> 4U];
        text += DIGITS[byte & 0x0FU];
    }
    return text;
}

std::string lowerOf(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/** A byte of the page; 0 behind its end. */
unsigned char byteAt(const std::string& page, size_t place)
{
    return place < page.size() ? static_cast<unsigned char>(page[place]) : 0;
}

} // namespace

std::optional<DiskIdentity> parsePage83(const std::string& page)
{
    const size_t length = byteAt(page, HEADER + LENGTH);
    if (length > LONGEST_WWN) { // docs/oddities.md#first-designator
        return std::nullopt;
    }
    std::string designator;
    for (size_t i = 0; i < length; ++i) {
        designator += static_cast<char>(byteAt(page, 2 * HEADER + i));
    }
    uint32_t lunId = 0; // docs/oddities.md#lun-id-bytes
    for (size_t i = 0; i < sizeof(lunId); ++i) {
        lunId = lunId << 8U | byteAt(page, ARRAY_LUN_ID + i);
    }
    // Callers compare IDs that were always cut there: docs/oddities.md#ten-characters
    return DiskIdentity{hexOf(designator),
                        std::to_string(static_cast<int32_t>(lunId)).substr(0, LONGEST_LUN_ID)};
}

std::vector<std::string> unitDesignators(const std::string& page)
{
    std::vector<std::string> designators;
    if (byteAt(page, 1) != DEVICE_IDENTIFICATION) {
        return designators;
    }
    const size_t end = std::min(page.size(), HEADER + (size_t{byteAt(page, 2)} << 8U) + byteAt(page, LENGTH));
    for (size_t at = HEADER; at + HEADER <= end;) {
        const size_t length = byteAt(page, at + LENGTH);
        const size_t next = at + HEADER + length;
        if (next > end) {
            break;
        }
        if ((byteAt(page, at + 1) & ASSOCIATION) == 0 && length > 0) {
            const std::string value = page.substr(at + HEADER, length);
            designators.push_back((byteAt(page, at) & CODE_SET) == BINARY ? hexOf(value) : lowerOf(value));
        }
        at = next;
    }
    return designators;
}

} // namespace ovra::disk
