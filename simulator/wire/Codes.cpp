#include "wire/Codes.h"

namespace arraysim {

const std::vector<CodeEntry>& codeTable()
{
    static const std::vector<CodeEntry> table = {
        {Code::hostAlreadyInGroup, "hostAlreadyInGroup", "The host is in that host group already."},
        {Code::notInLunGroup, "notInLunGroup", "The LUN or snapshot is not in that LUN group."},
        {Code::alreadyInLunGroup, "alreadyInLunGroup", "The LUN or snapshot is in that LUN group already."},
        {Code::lunGroupSettling, "lunGroupSettling",
         "The LUN group was just created and is not readable yet."},
        {Code::objectSettling, "objectSettling", "The object was just created and is not readable yet."},
        {Code::objectMissing, "objectMissing", "No object of that type has that ID."},
        {Code::idTaken, "idTaken", "The ID chosen for a new object belongs to another object."},
        {Code::nameTaken, "nameTaken", "Another object of that type has that name."},
        {Code::memberMissing, "memberMissing", "The request lacks a member or parameter that it needs."},
        {Code::memberInvalid, "memberInvalid",
         "A member or parameter has a type or value that is not allowed."},
        {Code::memberUnknown, "memberUnknown",
         "The request carries a member that the resource does not know."},
        {Code::bodyMalformed, "bodyMalformed", "The body is not one JSON object."},
        {Code::queryMalformed, "queryMalformed", "The query string, a filter or a range cannot be read."},
        {Code::resourceUnknown, "resourceUnknown", "The array has no resource at that path."},
        {Code::methodUnsupported, "methodUnsupported", "The resource does not support that method."},
        {Code::objectInUse, "objectInUse", "The object is in use by another one and cannot be deleted."},
        {Code::capacityShort, "capacityShort", "The storage pool has not enough free capacity."},
        {Code::associationUnsupported, "associationUnsupported",
         "Objects of these two types cannot be associated."},
        {Code::associationExists, "associationExists", "The two objects are associated already."},
        {Code::associationMissing, "associationMissing", "The two objects are not associated."},
        {Code::associationFull, "associationFull",
         "The object is associated with another one and takes only one of that type."},
        {Code::chapIncomplete, "chapIncomplete", "CHAP is asked for without the names and secrets it needs."},
        {Code::chapOldSecretWrong, "chapOldSecretWrong",
         "A CHAP secret is changed without the current one, or with a wrong one."},
        {Code::loginRefused, "loginRefused", "User name or password is wrong."},
        {Code::sessionInvalid, "sessionInvalid",
         "The request has no valid session: log in again (HTTP status 401)."},
        {Code::sessionLimit, "sessionLimit", "The array has no free session."},
        {Code::internal, "internal", "The array could not keep its state; see its log."},
    };
    return table;
}

} // namespace arraysim
