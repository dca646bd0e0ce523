#ifndef SIMULATOR_BASE_CODES_H
#define SIMULATOR_BASE_CODES_H

#include <stdexcept>
#include <string>
#include <vector>

namespace arraysim {

/** Every error code that the array answers with; codeTable() says what each means. */
enum class Code : int
{
    OK = 0,

    HOST_ALREADY_IN_GROUP = 1077937501,
    NOT_IN_LUN_GROUP = 1077948996,
    ALREADY_IN_LUN_GROUP = 1077948997,
    LUN_GROUP_SETTLING = 1077949001,
    OBJECT_SETTLING = 1077949006,

    OBJECT_MISSING = 1077950001,
    ID_TAKEN = 1077950002,
    NAME_TAKEN = 1077950003,
    MEMBER_MISSING = 1077950004,
    MEMBER_INVALID = 1077950005,
    MEMBER_UNKNOWN = 1077950006,
    BODY_MALFORMED = 1077950007,
    QUERY_MALFORMED = 1077950008,
    RESOURCE_UNKNOWN = 1077950009,
    METHOD_UNSUPPORTED = 1077950010,
    OBJECT_IN_USE = 1077950011,
    CAPACITY_SHORT = 1077950012,
    ASSOCIATION_UNSUPPORTED = 1077950013,
    ASSOCIATION_EXISTS = 1077950014,
    ASSOCIATION_MISSING = 1077950015,
    ASSOCIATION_FULL = 1077950016,
    CHAP_INCOMPLETE = 1077950017,
    CHAP_OLD_SECRET_WRONG = 1077950018,

    LOGIN_REFUSED = 1077950101,
    SESSION_INVALID = 1077950102,
    SESSION_LIMIT = 1077950103,

    INTERNAL = 1077950999,
};

/**
 * The number of a code on the wire. Those up to OBJECT_SETTLING are what clients know of every array; the
 * rest is this array's own, and shifted by what shiftOwnCodes() was given.
 */
int wireCode(Code code);

/** Lets this array's own codes be others from now on, for clients that must not decide by them. */
void shiftOwnCodes(int by);

struct CodeEntry
{
    Code code;
    const char* name;
    const char* meaning;
};

/** The codes in ascending order, with what they mean to a person. */
const std::vector<CodeEntry>& codeTable();

/** A request that the array refuses: the code and the description of its error object. */
class ArrayError : public std::runtime_error
{
public:
    ArrayError(Code code, const std::string& description) : std::runtime_error(description), m_code(code) {}
    Code code() const { return m_code; }

private:
    Code m_code;
};

} // namespace arraysim

#endif
