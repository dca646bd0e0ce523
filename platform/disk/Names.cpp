#include "ovra/disk/Names.h"

#include <algorithm>

namespace ovra::disk {
namespace {

constexpr size_t LONGEST_NAME = 31;      // the kernel's limit for a disk
constexpr size_t LONGEST_MAP_NAME = 127; // the kernel's limit for device-mapper
constexpr size_t LONGEST_NUMBER = 20;    // of 64 bits
constexpr const char* BLANKS = " \t";
constexpr const char* DIGITS = "0123456789";
constexpr const char* LETTERS = "abcdefghijklmnopqrstuvwxyz";
constexpr const char* PLAIN = "0123456789"
                              "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                              "abcdefghijklmnopqrstuvwxyz"
                              "._:-";

bool isPrefixAndRest(const std::string& name, const std::string& prefix, const char* rest)
{
    return name.size() > prefix.size() && name.size() <= LONGEST_NAME &&
           name.compare(0, prefix.size(), prefix) == 0 &&
           name.find_first_not_of(rest, prefix.size()) == std::string::npos;
}

/** As the kernel prints it: digits, no leading zero. */
bool isNumber(const std::string& text)
{
    return !text.empty() && text.size() <= LONGEST_NUMBER &&
           text.find_first_not_of(DIGITS) == std::string::npos && (text.size() == 1 || text[0] != '0');
}

} // namespace

bool isDiskName(const std::string& name)
{
    return isPrefixAndRest(name, "sd", LETTERS);
}

bool isMapperName(const std::string& name)
{
    return isPrefixAndRest(name, "dm-", DIGITS);
}

bool isNodeName(const std::string& name)
{
    return name[0] != '.' && name[0] != '-' && isPrefixAndRest(name, "", PLAIN);
}

bool isMapName(const std::string& name)
{
    const std::string characters = std::string(PLAIN) + "_+";
    return !name.empty() && name.size() <= LONGEST_MAP_NAME && name[0] != '.' && name[0] != '-' &&
           name.find_first_not_of(characters) == std::string::npos;
}

bool isPlainWwn(const std::string& wwn)
{
    // A leading hyphen would make an option of it.
    return !wwn.empty() && wwn[0] != '-' && wwn.find_first_not_of(PLAIN) == std::string::npos;
}

std::optional<ScsiAddress> ScsiAddress::parse(const std::string& text)
{
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == ':') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    if (parts.size() != 4 || !std::all_of(parts.begin(), parts.end(), isNumber)) {
        return std::nullopt;
    }
    return ScsiAddress{text, parts.front(), parts.back()};
}

std::string lastPart(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "/" + path : path.substr(slash);
}

std::string lastName(const std::string& path)
{
    return lastPart(path).substr(1);
}

std::vector<std::string> wordsOf(const std::string& line)
{
    std::vector<std::string> words;
    size_t start = line.find_first_not_of(BLANKS);
    while (start != std::string::npos) {
        const size_t end = std::min(line.find_first_of(BLANKS, start), line.size());
        words.push_back(line.substr(start, end - start));
        start = line.find_first_not_of(BLANKS, end);
    }
    return words;
}

} // namespace ovra::disk
