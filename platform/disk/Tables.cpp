#include "ovra/disk/Tables.h"

#include "ovra/disk/Files.h"
#include "ovra/disk/Names.h"

#include <algorithm>

namespace ovra::disk {
namespace {

/** \040 and the like, as the kernel writes blanks in paths. */
std::string unescaped(const std::string& text)
{
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const std::string digits = text.substr(i + 1, 3);
        const bool isEscape = text[i] == '\\' && digits.size() == 3 && digits[0] < '4' &&
                              digits.find_first_not_of("01234567") == std::string::npos;
        result += isEscape ? static_cast<char>(std::stoi(digits, nullptr, 8)) : text[i];
        i += isEscape ? 3 : 0;
    }
    return result;
}

} // namespace

std::vector<Mount> parseMounts(const std::string& mountinfo)
{
    // 36 35 8:33 / /data rw,relatime shared:1 - ext4 /dev/sdc1 rw
    constexpr size_t NUMBER = 2, POINT = 4;
    std::vector<Mount> mounts;
    for (const std::string& line : linesOf(mountinfo)) {
        const std::vector<std::string> words = wordsOf(line);
        if (words.size() > POINT) {
            const auto separator = std::find(words.begin(), words.end(), "-");
            const std::string source = words.end() - separator > 2 ? separator[2] : std::string();
            mounts.push_back({words[NUMBER], unescaped(source), unescaped(words[POINT])});
        }
    }
    return mounts;
}

std::vector<std::string> parseSwaps(const std::string& swaps)
{
    std::vector<std::string> areas;
    for (const std::string& line : linesOf(swaps)) {
        const std::vector<std::string> words = wordsOf(line);
        if (!words.empty() && words[0][0] == '/') { // the first line is a heading
            areas.push_back(unescaped(words[0]));
        }
    }
    return areas;
}

} // namespace ovra::disk
