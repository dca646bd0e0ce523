#ifndef OBSERVER_KINDS_H
#define OBSERVER_KINDS_H

namespace ovra::tessel {

/** An ID among the arguments of an operation: what it is the ID of, and what is said when it is empty. */
struct IdArgument
{
    const char* kind; ///< as ObservedObject::kind, or INITIATOR
    const char* textIfEmpty;
};

/** Kinds of what IDs are of. */
namespace kinds {

constexpr const char* LUN = "lun";
constexpr const char* SNAPSHOT = "snapshot";
constexpr const char* LUNGROUP = "lungroup";
constexpr const char* HOST = "host";
constexpr const char* HOSTGROUP = "hostgroup";
constexpr const char* MAPPINGVIEW = "mappingview";
constexpr const char* STORAGEPOOL = "storagepool";
constexpr const char* FCPORT = "fcport";
constexpr const char* FCOEPORT = "fcoeport";
constexpr const char* ETHPORT = "ethport";
constexpr const char* HANDLER = "handler";
constexpr const char* INITIATOR = "initiator"; ///< stands in a member of its own

/** The kind of an object type; "object" for one that is not known. */
const char* of(unsigned long type);

} // namespace kinds

} // namespace ovra::tessel

#endif
