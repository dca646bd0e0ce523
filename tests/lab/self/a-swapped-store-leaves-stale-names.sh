#!/bin/bash
# Another store behind a LUN that the host already has: the disk answers with the new WWN, while the
# names in /dev/disk/by-id are the old ones until the disk is removed and found again.
. "$(dirname "$0")/../support/guest.sh"

session_logout 2>/dev/null
expect "a target" target_create "$lab_target:swap"
expect "a portal" portal_add 127.0.0.3:3260
expect "an ACL" acl_create "$lab_initiator"
old=$(lun_create before "$(serial_for 21 5a)" 16M)
new=$(lun_create after "$(serial_for 22 5a)" 16M)
acl_map "$lab_initiator" 4 before
expect "the initiator logs in" session_login
disk=$(disk_of "$old")
expect "the first store is a disk" [ -b "/dev/$disk" ]

expect "the store is swapped" swap_store "$lab_initiator" 4 after
same "the same disk answers with the new WWN" "$(disk_of "$new")" "$disk"
same "no disk answers with the old WWN" "$(disk_of "$old")" ""
udevadm settle
same "the old name still leads to it" "$(named "scsi-3$old")" "$disk"
same "there is no new name" "$(named "scsi-3$new")" ""

where=$(address "$disk")
echo 1 > "/sys/class/scsi_device/$where/device/delete"
echo "- - -" > "/sys/class/scsi_host/host${where%%:*}/scan"
expect "the new name comes with the disk's return" wait_for 120 test -e "/dev/disk/by-id/scsi-3$new"
same "the old name is gone" "$(named "scsi-3$old")" ""
session_logout
