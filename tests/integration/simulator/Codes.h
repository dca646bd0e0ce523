#pragma once

/// The array's error codes, as clients see them: written down again here, so that none changes unnoticed.
namespace code {
constexpr int hostAlreadyInGroup = 1077937501;
constexpr int notInLunGroup = 1077948996;
constexpr int alreadyInLunGroup = 1077948997;
constexpr int lunGroupSettling = 1077949001;
constexpr int objectSettling = 1077949006;
constexpr int objectMissing = 1077950001;
constexpr int idTaken = 1077950002;
constexpr int nameTaken = 1077950003;
constexpr int memberMissing = 1077950004;
constexpr int memberInvalid = 1077950005;
constexpr int memberUnknown = 1077950006;
constexpr int bodyMalformed = 1077950007;
constexpr int queryMalformed = 1077950008;
constexpr int resourceUnknown = 1077950009;
constexpr int methodUnsupported = 1077950010;
constexpr int objectInUse = 1077950011;
constexpr int capacityShort = 1077950012;
constexpr int associationUnsupported = 1077950013;
constexpr int associationExists = 1077950014;
constexpr int associationMissing = 1077950015;
constexpr int associationFull = 1077950016;
constexpr int chapIncomplete = 1077950017;
constexpr int chapOldSecretWrong = 1077950018;
constexpr int loginRefused = 1077950101;
constexpr int sessionInvalid = 1077950102;
constexpr int sessionLimit = 1077950103;
} // namespace code
