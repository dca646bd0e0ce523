#include "base/Codes.h"

namespace arraysim {
namespace {

int& ownShift()
{
    static int shift = 0;
    return shift;
}

} // namespace

int wireCode(Code code)
{
    return static_cast<int>(code) + (code > Code::OBJECT_SETTLING ? ownShift() : 0);
}

void shiftOwnCodes(int by)
{
    ownShift() = by;
}

const std::vector<CodeEntry>& codeTable()
{
    static const std::vector<CodeEntry> table = {
        {Code::HOST_ALREADY_IN_GROUP, "hostAlreadyInGroup", "The host is in that host group already."},
        {Code::NOT_IN_LUN_GROUP, "notInLunGroup", "The LUN or snapshot is not in that LUN group."},
        {Code::ALREADY_IN_LUN_GROUP, "alreadyInLunGroup",
         "The LUN or snapshot is in that LUN group already."},
        {Code::LUN_GROUP_SETTLING, "lunGroupSettling",
         "The LUN group was just created and is not readable yet."},
        {Code::OBJECT_SETTLING, "objectSettling", "The object was just created and is not readable yet."},
        {Code::OBJECT_MISSING, "objectMissing", "No object of that type has that ID."},
        {Code::ID_TAKEN, "idTaken", "The ID chosen for a new object belongs to another object."},
        {Code::NAME_TAKEN, "nameTaken", "Another object of that type has that name."},
        {Code::MEMBER_MISSING, "memberMissing", "The request lacks a member or parameter that it needs."},
        {Code::MEMBER_INVALID, "memberInvalid",
         "A member or parameter has a type or value that is not allowed."},
        {Code::MEMBER_UNKNOWN, "memberUnknown",
         "The request carries a member that the resource does not know."},
        {Code::BODY_MALFORMED, "bodyMalformed", "The body is not one JSON object."},
        {Code::QUERY_MALFORMED, "queryMalformed", "The query string, a filter or a range cannot be read."},
        {Code::RESOURCE_UNKNOWN, "resourceUnknown", "The array has no resource at that path."},
        {Code::METHOD_UNSUPPORTED, "methodUnsupported", "The resource does not support that method."},
        {Code::OBJECT_IN_USE, "objectInUse", "The object is in use by another one and cannot be deleted."},
        {Code::CAPACITY_SHORT, "capacityShort", "The storage pool has not enough free capacity."},
        {Code::ASSOCIATION_UNSUPPORTED, "associationUnsupported",
         "Objects of these two types cannot be associated."},
        {Code::ASSOCIATION_EXISTS, "associationExists", "The two objects are associated already."},
        {Code::ASSOCIATION_MISSING, "associationMissing", "The two objects are not associated."},
        {Code::ASSOCIATION_FULL, "associationFull",
         "The object is associated with another one and takes only one of that type."},
        {Code::CHAP_INCOMPLETE, "chapIncomplete",
         "CHAP is asked for without the names and secrets it needs."},
        {Code::CHAP_OLD_SECRET_WRONG, "chapOldSecretWrong",
         "A CHAP secret is changed without the current one, or with a wrong one."},
        {Code::LOGIN_REFUSED, "loginRefused", "User name or password is wrong."},
        {Code::SESSION_INVALID, "sessionInvalid",
         "The request has no valid session: log in again (HTTP status 401)."},
        {Code::SESSION_LIMIT, "sessionLimit", "The array has no free session."},
        {Code::INTERNAL, "internal", "The array could not keep its state; see its log."},
    };
    return table;
}

} // namespace arraysim
