#!/bin/bash
# With the copy of the rescan script that comes first in PATH, a rescan of all buses finds what was
# mapped, removes what was unmapped, and touches no other disk.
. "$(dirname "$0")/../support/guest.sh"

same "the copy comes first" "$(command -v rescan-scsi-bus.sh)" /run/lab/bin/rescan-scsi-bus.sh
expect "the array starts" array_start
kept=$(lun_create kept "$(serial_for 51 4a)" 16M)
gone=$(lun_create gone "$(serial_for 52 4a)" 16M)
late=$(lun_create late "$(serial_for 53 4a)" 16M)
acl_map "$lab_initiator" 1 kept
acl_map "$lab_initiator" 2 gone
expect "the initiator logs in" session_login
disk=$(disk_of "$kept")
incarnation=$(cat "/sys/block/$disk/diskseq")
gone_disk=$(disk_of "$gone")

acl_unmap "$lab_initiator" 2
acl_map "$lab_initiator" 3 late
rescan-scsi-bus.sh -r > /tmp/rescan.out 2>&1
expect "the unmapped disk is gone" [ ! -e "/sys/block/$gone_disk" ]
expect "the disk that was mapped late is there" [ -n "$(disk_of "$late")" ]
same "the other disk was not touched" "$(cat "/sys/block/$disk/diskseq")" "$incarnation"
same "the script counts one removal" "$(grep -o '^[0-9]* device(s) removed' /tmp/rescan.out)" "1 device(s) removed"
expect "the canary is well" canary_check
expect "the initiator logs out" session_logout

cp /run/lab/bin/rescan-scsi-bus.sh /tmp/other-script
rescan_script=/tmp/other-script
expect "a script without the two patterns is not taken" fails rescan_script_mend
expect "no half mended copy is left" [ ! -e /run/lab/bin/rescan-scsi-bus.sh ]
rescan_script=/usr/bin/rescan-scsi-bus.sh
expect "the stock script is mended again" rescan_script_mend
