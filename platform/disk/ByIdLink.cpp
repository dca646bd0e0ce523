#include "ovra/disk/ByIdLink.h"

#include "ovra/disk/Names.h"

#include <cstring>

namespace ovra::disk {
namespace {

constexpr const char* UP = "../";

/** What follows the first "../"s: where the link leads. */
std::string targetName(const std::string& line, size_t position)
{
    while (line.compare(position, std::strlen(UP), UP) == 0) {
        position += std::strlen(UP);
    }
    return line.substr(position);
}

} // namespace

std::string identifierOf(const std::string& name)
{
    size_t start = name.find("scsi-");
    if (start == std::string::npos) {
        start = name.find("wwn-");
    }
    if (start == std::string::npos) {
        return std::string();
    }
    const size_t kind = std::strlen("scsi-3"); // as long as wwn-0x
    const std::string word = name.substr(start, name.find(' ', start) - start);
    return word.size() > kind ? word.substr(kind) : std::string();
}

bool ByIdLink::isLink(const std::string& line)
{
    return line.find(UP) != std::string::npos;
}

std::optional<ByIdLink> ByIdLink::parse(const std::string& line)
{
    const size_t target = line.find(UP);
    if (target == std::string::npos || !isNodeName(targetName(line, target))) {
        return std::nullopt;
    }
    return ByIdLink{BY_ID_DIRECTORY + line.substr(target), identifierOf(line)};
}

} // namespace ovra::disk
