#include "ovra/disk/Multipath.h"

#include "ovra/disk/Names.h"

#include <algorithm>

namespace ovra::disk {
namespace {

constexpr int FIRST_PATH_LINE = 3; // behind a map's own line: its size, its first path group, the first path

using Lines = std::vector<std::string>;

bool isMapLine(const std::string& line)
{
    const std::vector<std::string> words = wordsOf(line);
    return std::any_of(words.begin(), words.end(), isMapperName);
}

Lines::const_iterator mapLineOf(const std::string& node, const Lines& lines)
{
    return std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
        const std::vector<std::string> words = wordsOf(line);
        return std::find(words.begin(), words.end(), node) != words.end();
    });
}

} // namespace

std::optional<std::string> firstPathOf(const std::string& node, const Lines& lines)
{
    const auto map = mapLineOf(node, lines);
    if (lines.end() - map <= FIRST_PATH_LINE || std::any_of(map + 1, map + FIRST_PATH_LINE + 1, isMapLine)) {
        return std::nullopt; // a map without paths: the line wanted is another map's
    }
    const std::vector<std::string> words = wordsOf(map[FIRST_PATH_LINE]);
    const auto disk = std::find_if(words.begin(), words.end(), isDiskName);
    return disk == words.end() ? std::nullopt : std::make_optional(*disk);
}

} // namespace ovra::disk
