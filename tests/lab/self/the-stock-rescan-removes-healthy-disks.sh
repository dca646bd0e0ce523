#!/bin/bash
# The script as sg3-utils 1.46 ships it takes healthy disks for gone: it looks for "Device_type=" and
# "PQual=N  Device" where sg_inq prints "PDT=", calls them "LU not available (PQual 3)", and with -r
# removes them. It runs on the target's own bus alone here, so that the canary stays.
. "$(dirname "$0")/../support/guest.sh"

expect "a target" target_create "$lab_target:stock"
expect "a portal" portal_add 127.0.0.5:3260
expect "an ACL" acl_create "$lab_initiator"
wwn=$(lun_create healthy "$(serial_for 61 6a)" 16M)
acl_map "$lab_initiator" 1 healthy
expect "the initiator logs in" session_login
disk=$(disk_of "$wwn")
where=$(address "$disk")
expect "the disk is ready" sg_turs "/dev/$disk"
expect "sg_inq spells the type PDT=" grep -q 'PDT=0' <(sg_inq "/dev/$disk")

/usr/bin/rescan-scsi-bus.sh -r --hosts="${where%%:*}" > /tmp/rescan.out 2>&1
cat -v /tmp/rescan.out
expect "the script calls the disk not available" grep -q 'changed: LU not available (PQual 3)' /tmp/rescan.out
same "the script removed both disks of the bus" "$(grep -o '^[0-9]* device(s) removed' /tmp/rescan.out)" "2 device(s) removed"
expect "the healthy disk is gone" [ ! -e "/sys/block/$disk" ]
expect "the canary is well" canary_check
expect "the initiator logs out" session_logout
