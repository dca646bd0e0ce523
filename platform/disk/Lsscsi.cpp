#include "ovra/disk/Lsscsi.h"

namespace ovra::disk {

std::optional<std::string> diskOfLine(const std::string& line)
{
    const std::vector<std::string> words = wordsOf(line);
    if (words.empty() || words.back() != "/dev/" + lastName(words.back()) ||
        !isDiskName(lastName(words.back()))) {
        return std::nullopt;
    }
    return words.back();
}

std::optional<ScsiAddress> addressOfLine(const std::string& line, const std::string& device)
{
    const std::vector<std::string> words = wordsOf(line);
    const size_t end = line.find(']');
    if (words.empty() || words.back() != device || line[0] != '[' || end == std::string::npos) {
        return std::nullopt;
    }
    return ScsiAddress::parse(line.substr(1, end - 1));
}

} // namespace ovra::disk
