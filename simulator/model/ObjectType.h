#ifndef SIMULATOR_MODEL_OBJECTTYPE_H
#define SIMULATOR_MODEL_OBJECTTYPE_H

#include "model/Object.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace arraysim {

class World;

/**
 * How a field stands in a record, and in a body: text as text; decimal as decimal text in records and
 * as a number in bodies; number as a number in both; flag as "true"/"false" in records and as a
 * boolean or one of these texts in bodies; code as decimal text in both.
 */
enum class Wire
{
    TEXT,
    DECIMAL,
    NUMBER,
    FLAG,
    CODE
};

/** When a caller may give a field a value. */
enum class Given
{
    NEVER,
    AT_CREATE,
    REQUIRED,
    ALWAYS
};

/**
 * One field of an object type. Declared with the calls below, e.g.
 * `Field("NAME", Wire::TEXT).given(Given::REQUIRED).unique().filter()`.
 */
struct Field
{
    using Compute = std::function<std::string(const World&, const Object&)>;
    using Applies = std::function<bool(const Object&)>;

    Field(std::string fieldKey, Wire fieldWire) : key(std::move(fieldKey)), wire(fieldWire) {}

    Field& given(Given when) { return givenWhen = when, *this; }
    Field& modifiable() { return isModifiable = true, *this; }
    Field& unique() { return isUnique = true, *this; }
    Field& filter() { return isFilter = true, *this; }
    Field& fallback(std::string value) { return defaultValue = std::move(value), *this; }
    /** Bounds of a number, or of a text's length in bytes. */
    Field& range(unsigned long long low, unsigned long long high) { return min = low, max = high, *this; }
    /** Follows from other objects; never stored. */
    Field& derived(Compute function) { return compute = std::move(function), *this; }
    /** Kept, but never answered. */
    Field& secret() { return isSecret = true, *this; }
    /** Only looked at while the request runs; neither kept nor answered. */
    Field& transient() { return isTransient = true, *this; }
    /** Is answered only by objects for which this holds. */
    Field& onlyWhere(Applies function) { return applies = std::move(function), *this; }

    std::string key;
    Wire wire;
    Given givenWhen = Given::NEVER;
    bool isModifiable = false;
    bool isUnique = false;
    bool isFilter = false;
    bool isSecret = false;
    bool isTransient = false;
    std::string defaultValue;
    unsigned long long min = 0;
    unsigned long long max = ~0ULL;
    Compute compute;
    Applies applies;
};

/** A create or modification while it is checked: hooks read what was given and complete the values. */
struct Change
{
    World& world;
    const Object* before; ///< null at a create
    std::string id;       ///< the object's ID
    Values given;         ///< what the body gave, as text
    Values values;        ///< what will be kept
    std::string parentId; ///< the parent after the change, empty for none
    bool creating() const { return before == nullptr; }
    bool gave(const std::string& key) const { return given.count(key) != 0; }
    /** What the body gave, empty where it gave nothing. */
    std::string givenText(const std::string& key) const;
    std::string value(const std::string& key) const;
};

/** Whose ID an object carries: one that the array counts, or a name that the caller brings. */
enum class Naming
{
    COUNTED,
    BY_CALLER
};

/** The parent of an object, given as PARENTID and PARENTTYPE. It is kept as an association. */
struct Parent
{
    Type type;
    bool required;
    bool modifiable;
};

/** Everything that the array knows about one type of object. */
struct ObjectType
{
    Type code;
    std::string title;                  ///< as descriptions name it, e.g. "LUN group"
    std::vector<std::string> resources; ///< names in paths; the first is the usual one
    std::vector<Field> fields;
    Naming naming = Naming::COUNTED;
    bool callerManaged = true; ///< false: made by the array alone, read-only on the interface
    std::optional<Parent> parent{};
    std::function<void(const std::string& id)> checkId{}; ///< of IDs brought by the caller
    std::function<void(Change&)> complete{};              ///< rules and array-given values of a change
    std::function<void(World&, const Object&)> remove{};  ///< further rules and effects of a deletion
    std::function<void(World&, const Object& before, Object& after)> adjusted{}; ///< effects of an adjustment
    std::function<std::vector<Object>()> factory{}; ///< objects of the factory state

    const Field* field(const std::string& key) const;
};

/** All types. Defined where they are declared, one file each: the model itself knows none of them. */
const std::vector<const ObjectType*>& objectTypes();
const ObjectType& objectType(Type code);
/** Null where the array has no such type or resource. */
const ObjectType* findType(int code);
const ObjectType* findResource(const std::string& name);

} // namespace arraysim

#endif
