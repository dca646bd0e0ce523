#ifndef HOST_NAMESEARCH_H
#define HOST_NAMESEARCH_H

#include "session/FewLines.h"

#include <ovra/disk/ByIdLink.h>

#include <optional>
#include <string>

namespace ovra::tessel {

/** Reads the lines of a listing; says in the run log which links are left out for the names they lead to. */
class LinkReader
{
public:
    LinkReader() = default;
    ~LinkReader();
    LinkReader(const LinkReader&) = delete;
    LinkReader& operator=(const LinkReader&) = delete;

    std::optional<disk::ByIdLink> parse(const std::string& line);

private:
    FewLines m_unusual{OS_LOG_WARN};
};

/** Reads the size and state of a disk again into the kernel. */
void rescanDevice(const std::string& path);

/** Finds a disk among the names that hold its WWN; only with the Korvex product. */
std::string findByName(const std::string& wwn);

} // namespace ovra::tessel

#endif
