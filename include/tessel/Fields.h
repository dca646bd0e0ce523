#ifndef TESSEL_FIELDS_H
#define TESSEL_FIELDS_H

/** @file
 * Walking over the fields of any record. */

#include <tessel/ETHPort.h>
#include <tessel/FCInitiator.h>
#include <tessel/FCPort.h>
#include <tessel/FCoEPort.h>
#include <tessel/Host.h>
#include <tessel/HostGroup.h>
#include <tessel/IscsiInitiator.h>
#include <tessel/Lun.h>
#include <tessel/LunGroup.h>
#include <tessel/MappingView.h>
#include <tessel/Snapshot.h>

#include <string>
#include <vector>

/** One field of a record, for programs that print, log or store records without writing their fields out. */
struct TESSEL_API RecordField
{
    /** How a value reads. */
    enum Kind
    {
        TEXT,   ///< any text
        NUMBER, ///< decimal, may be negative
        FLAG    ///< "true" or "false"
    };

    std::string name;  ///< name of the record's member
    Kind kind;         ///< how value reads
    std::string value; ///< as text; empty for a secret
    bool isSet;        ///< false: the member holds the value that means unset, or an empty text
    bool isSecret;     ///< a password: never handed out
};

/**
 * The fields of a record in the order of its members. Throws nothing but std::bad_alloc; thread-safe.
 * @param record any record of the SDK.
 * @return one entry for each member.
 */
TESSEL_API std::vector<RecordField> fieldsOf(const LunMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const LunGroupMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const SnapshotMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const HostMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const HostGroupMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const IscsiInitiatorMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const FCInitiatorMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const MappingViewMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const FCPortMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const FCoEPortMO& record);
/** @copydoc fieldsOf(const LunMO&) */
TESSEL_API std::vector<RecordField> fieldsOf(const ETHPortMO& record);

#endif
