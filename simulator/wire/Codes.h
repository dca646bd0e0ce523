#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace arraysim {

/// Every error code that the array answers with; codeTable() says what each means.
enum class Code : int
{
    ok = 0,

    hostAlreadyInGroup = 1077937501,
    notInLunGroup = 1077948996,
    alreadyInLunGroup = 1077948997,
    lunGroupSettling = 1077949001,
    objectSettling = 1077949006,

    objectMissing = 1077950001,
    idTaken = 1077950002,
    nameTaken = 1077950003,
    memberMissing = 1077950004,
    memberInvalid = 1077950005,
    memberUnknown = 1077950006,
    bodyMalformed = 1077950007,
    queryMalformed = 1077950008,
    resourceUnknown = 1077950009,
    methodUnsupported = 1077950010,
    objectInUse = 1077950011,
    capacityShort = 1077950012,
    associationUnsupported = 1077950013,
    associationExists = 1077950014,
    associationMissing = 1077950015,
    associationFull = 1077950016,
    chapIncomplete = 1077950017,
    chapOldSecretWrong = 1077950018,

    loginRefused = 1077950101,
    sessionInvalid = 1077950102,
    sessionLimit = 1077950103,

    internal = 1077950999,
};

struct CodeEntry
{
    Code code;
    const char* name;
    const char* meaning;
};

/// The codes in ascending order, with what they mean to a person.
const std::vector<CodeEntry>& codeTable();

/// A request that the array refuses: the code and the description of its error object.
class ArrayError : public std::runtime_error
{
public:
    ArrayError(Code code, const std::string& description) : std::runtime_error(description), m_code(code) {}
    Code code() const { return m_code; }

private:
    Code m_code;
};

} // namespace arraysim
