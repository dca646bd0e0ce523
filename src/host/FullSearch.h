#ifndef HOST_FULLSEARCH_H
#define HOST_FULLSEARCH_H

#include <map>
#include <set>
#include <string>

class CDiskScannerHandlerImpl;

namespace ovra::tessel {

class InterfaceRecord;

/** Reads the size and state of a disk again into the kernel. */
void rescanDevice(const std::string& path);

/** The search through every disk of this host for the one with a WWN. */
class FullSearch
{
public:
    FullSearch(CDiskScannerHandlerImpl& scanner, const InterfaceRecord& record, const char* label,
               const std::string& objectId, const std::string& wwn)
        : m_scanner(scanner), m_record(record), m_label(label), m_objectId(objectId), m_wwn(wwn)
    {
    }

    /** The device's path, or an empty one. */
    std::string run();

private:
    using Disks = std::map<std::string, std::set<std::string>>; ///< identifiers by path
    enum class Outcome
    {
        NOT_THIS_ONE,
        FOUND,
        RENEWED, ///< was there under the names of another disk; look for it again
        GIVEN_UP
    };

    bool list(Disks& disks);
    Outcome visit(const std::string& path, const std::set<std::string>& identifiers, bool mayRenew);

    CDiskScannerHandlerImpl& m_scanner;
    const InterfaceRecord& m_record;
    const char* const m_label;
    const std::string& m_objectId;
    const std::string& m_wwn;
};

} // namespace ovra::tessel

#endif
