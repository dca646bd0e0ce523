#ifndef SIMULATOR_TYPES_COMMON_H
#define SIMULATOR_TYPES_COMMON_H

#include "model/ObjectType.h"

namespace arraysim {

/** Capacities count sectors of this many bytes. */
constexpr unsigned SECTOR_SIZE = 512;

/** Status values of a sound object. */
constexpr const char* HEALTH_NORMAL = "1";
constexpr const char* RUNNING_ONLINE = "27";
constexpr const char* RUNNING_NORMAL = "1";
constexpr const char* RUNNING_OFFLINE = "28";
constexpr const char* RUNNING_LINK_UP = "10";
constexpr const char* RUNNING_LINK_DOWN = "11";

/** The name of an object: needed at its creation and unique in its type. */
Field nameField();
Field descriptionField();
Field healthField();
Field runningField(const char* usual);

/** "true" where the object is associated with one of the other type, else "false". */
Field associatedFlag(const char* key, Type self, Type other);
/** The opposite of associatedFlag. */
Field freeFlag(Type self, Type other);
/** "true" where an initiator reaches the object through groups and a mapping view. */
Field exposedFlag(Type self);

/**
 * The world-wide name of a LUN or snapshot: NAA type 6, the company's ID, the kind and the array's own
 * digits, and the object's ID as the last eight digits.
 */
Field wwnField(char kind);

/** Replaces the company ID in WWNs made from now on (six hexadecimal digits). */
void setCompanyId(const std::string& digits);

} // namespace arraysim

#endif
