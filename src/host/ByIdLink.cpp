#include "host/ByIdLink.h"

#include "host/DeviceNames.h"

namespace ovra::tessel {

namespace {

const char* const DIRECTORY = "/dev/disk/by-id/";
const std::string UP = "../";

/** What follows the first "../"s: where the link leads. */
std::string targetName(const std::string& line, size_t position)
{
    while (line.compare(position, UP.size(), UP) == 0) {
        position += UP.size();
    }
    return line.substr(position);
}

/** The name's part behind "scsi-3" or "wwn-0x". */
std::string identifierOf(const std::string& line)
{
    size_t start = line.find("scsi-");
    if (start == std::string::npos) {
        start = line.find("wwn-");
    }
    if (start == std::string::npos) {
        return std::string();
    }
    const size_t kind = std::string("scsi-3").size();
    const std::string name = line.substr(start, line.find(' ', start) - start);
    return name.size() > kind ? name.substr(kind) : std::string();
}

} // namespace

std::optional<ByIdLink> ByIdLink::parse(const std::string& line)
{
    const size_t target = line.find(UP);
    if (target == std::string::npos) {
        return std::nullopt;
    }
    const std::string name = targetName(line, target);
    if (!isDiskName(name) && !isMapperName(name)) {
        return std::nullopt;
    }
    return ByIdLink{DIRECTORY + line.substr(target), identifierOf(line)};
}

} // namespace ovra::tessel
