#include "text/Numbers.h"

#include "kernel/Failure.h"
#include "text/Words.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace tesselctl {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::string_view PREFIXES = "kmgtpe";

Wide power(unsigned base, size_t exponent)
{
    Wide result = 1;
    for (size_t i = 0; i < exponent; ++i) {
        result *= base;
    }
    return result;
}

/** Bytes that a unit stands for; 0 for a unit that nobody knows. */
Wide unitBytes(const std::string& unit)
{
    if (unit.empty() || unit == "b") {
        return 1;
    }
    const size_t prefix = PREFIXES.find(unit[0]);
    if (prefix == std::string::npos) {
        return 0;
    }
    const std::string rest = unit.substr(1);
    if (rest.empty() || rest == "ib") {
        return power(1024, prefix + 1);
    }
    return rest == "b" ? power(1000, prefix + 1) : 0;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

uint64_t parseNumber(const std::string& what, const std::string& text, uint64_t low, uint64_t high)
{
    Wide value = 0;
    bool good = !text.empty() && text.size() <= 20 && std::all_of(text.begin(), text.end(), isDigit);
    for (size_t i = 0; good && i < text.size(); ++i) {
        value = value * 10 + static_cast<unsigned>(text[i] - '0');
    }
    good = good && value >= low && value <= high;
    if (!good) {
        throw UsageError(what + " takes a decimal number from " + std::to_string(low) + " to " +
                         std::to_string(high) + ", not '" + text + "'");
    }
    return static_cast<uint64_t>(value);
}

uint64_t parseSize(const std::string& what, const std::string& text)
{
    const auto refuse = [&](const std::string& why) {
        throw UsageError(what + ": '" + text + "' " + why +
                         "; write a size such as 10GiB, 500M or 1073741824");
    };
    size_t at = 0;
    size_t decimals = 0;
    bool fraction = false;
    Wide digits = 0;
    for (; at < text.size() && (isDigit(text[at]) || (text[at] == '.' && !fraction)); ++at) {
        if (text[at] == '.') {
            fraction = true;
            continue;
        }
        digits = digits * 10 + static_cast<unsigned>(text[at] - '0');
        decimals += fraction ? 1 : 0;
        if (at > 21) {
            refuse("has too many digits");
        }
    }
    const size_t unitAt = at < text.size() && text[at] == ' ' ? at + 1 : at;
    const Wide unit = unitBytes(lowered(text.substr(unitAt)));
    if (at == 0 || !isDigit(text[0]) || text[at - 1] == '.' || unit == 0) {
        refuse("is not a size");
    }
    const Wide scale = power(10, decimals);
    if (digits / scale > UINT64_MAX / unit || digits > ~Wide(0) / unit ||
        digits * unit / scale >= UINT64_MAX) {
        refuse("is more than 64 bits hold");
    }
    if (digits * unit % scale != 0) {
        refuse("is not a whole number of bytes");
    }
    if (digits == 0) {
        refuse("is nothing");
    }
    return static_cast<uint64_t>(digits * unit / scale);
}

std::string humanSize(uint64_t bytes)
{
    static const std::array<const char*, 7> UNITS = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    size_t unit = 0;
    uint64_t step = 1;
    while (unit + 1 < UNITS.size() && bytes / step >= 1024) {
        step *= 1024;
        ++unit;
    }
    const auto hundredths = static_cast<uint64_t>(Wide(bytes) * 100 / step);
    const bool exact = Wide(hundredths) * step == Wide(bytes) * 100;
    std::string number = std::to_string(hundredths / 100);
    if (hundredths % 100 != 0) {
        std::array<char, 8> decimals{};
        std::snprintf(decimals.data(), decimals.size(), ".%02u", static_cast<unsigned>(hundredths % 100));
        number += decimals.data();
        number.erase(number.find_last_not_of('0') + 1);
    }
    return (exact ? "" : "~") + number + " " + UNITS[unit];
}

} // namespace tesselctl
