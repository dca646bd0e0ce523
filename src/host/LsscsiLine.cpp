#include "host/LsscsiLine.h"

namespace ovra::tessel {

namespace {

const std::string DEV = "/dev/";

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

} // namespace

std::optional<std::string> diskOfLine(const std::string& line)
{
    const size_t start = line.find(DEV);
    if (start == std::string::npos || !isBlank(line.back())) {
        return std::nullopt; // without the blank, it is not sure that the name is complete
    }
    const std::string device = line.substr(start, line.size() - 1 - start);
    return isDiskName(device.substr(DEV.size())) ? std::make_optional(device) : std::nullopt;
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

} // namespace ovra::tessel
