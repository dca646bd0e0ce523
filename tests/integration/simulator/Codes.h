#ifndef SIMULATOR_CODES_H
#define SIMULATOR_CODES_H

/** The array's error codes, as clients see them: written down again here, so that none changes unnoticed. */
namespace code {
constexpr int HOST_ALREADY_IN_GROUP = 1077937501;
constexpr int NOT_IN_LUN_GROUP = 1077948996;
constexpr int ALREADY_IN_LUN_GROUP = 1077948997;
constexpr int LUN_GROUP_SETTLING = 1077949001;
constexpr int OBJECT_SETTLING = 1077949006;
constexpr int OBJECT_MISSING = 1077950001;
constexpr int ID_TAKEN = 1077950002;
constexpr int NAME_TAKEN = 1077950003;
constexpr int MEMBER_MISSING = 1077950004;
constexpr int MEMBER_INVALID = 1077950005;
constexpr int MEMBER_UNKNOWN = 1077950006;
constexpr int BODY_MALFORMED = 1077950007;
constexpr int QUERY_MALFORMED = 1077950008;
constexpr int RESOURCE_UNKNOWN = 1077950009;
constexpr int METHOD_UNSUPPORTED = 1077950010;
constexpr int OBJECT_IN_USE = 1077950011;
constexpr int CAPACITY_SHORT = 1077950012;
constexpr int ASSOCIATION_UNSUPPORTED = 1077950013;
constexpr int ASSOCIATION_EXISTS = 1077950014;
constexpr int ASSOCIATION_MISSING = 1077950015;
constexpr int ASSOCIATION_FULL = 1077950016;
constexpr int CHAP_INCOMPLETE = 1077950017;
constexpr int CHAP_OLD_SECRET_WRONG = 1077950018;
constexpr int LOGIN_REFUSED = 1077950101;
constexpr int SESSION_INVALID = 1077950102;
constexpr int SESSION_LIMIT = 1077950103;
} // namespace code

#endif
