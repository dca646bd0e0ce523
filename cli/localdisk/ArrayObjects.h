#ifndef LOCALDISK_ARRAYOBJECTS_H
#define LOCALDISK_ARRAYOBJECTS_H

#include "attach/Attachable.h"

#include <ovra/disk/Page83.h>

#include <map>
#include <set>
#include <string>
#include <utility>

namespace tesselctl {

/** An object of the array that a disk is, by its identity. */
struct ArrayObject
{
    const Attachable* kind = nullptr; ///< null: the array knows none of this WWN and ID
    std::string name;
    bool isShown = false; ///< to this host
};

/** What the array knows of the objects that disks say they are; asked once for each. */
class ArrayObjects
{
public:
    explicit ArrayObjects(Session& session) : m_session(session) {}

    /** Reads what the array shows to the host of an initiator; nothing where it does not know that. */
    void readShownTo(const ovra::tessel::HostInitiator& initiator);
    bool isShown(const ovra::disk::DiskIdentity& identity) const;
    /** The object that a disk is; one that is not shown is looked for by its ID. */
    const ArrayObject& find(const ovra::disk::DiskIdentity& identity);

private:
    struct Source;
    using Identity = std::pair<std::string, std::string>; // WWN, ID

    static const std::vector<Source>& sources();
    ArrayObject ask(const ovra::disk::DiskIdentity& identity);

    Session& m_session;
    std::set<std::string> m_hosts; ///< whose objects are read
    std::map<Identity, ArrayObject> m_objects;
    std::set<int> m_notFound; ///< codes by which this array says that it has no such object
};

/** "iSCSI initiator" */
std::string titleOf(const ovra::tessel::HostInitiator& initiator);

/** ID of an initiator's host; empty when it belongs to none. Throws NotFound. */
std::string hostIdOf(Session& session, const ovra::tessel::HostInitiator& initiator);

} // namespace tesselctl

#endif
