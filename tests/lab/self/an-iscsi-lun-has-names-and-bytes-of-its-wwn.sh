#!/bin/bash
# A mapped LUN becomes a disk whose names and whose page 0x83 are made of its WWN and LUN ID.
. "$(dirname "$0")/../support/guest.sh"

expect "the array starts" array_start
small=$(lun_create small "$(serial_for 7 abc)" 16M)
large=$(lun_create large "$(serial_for $((0x9a0000ff)) 1)" 16M 00a0b8)
same "a WWN has the default company ID" "$small" 600140500000000000000abc00000007
same "a WWN has the company ID given" "$large" 600a0b8000000000000000019a0000ff
expect "a serial that is too short is refused" fails lun_create bad 123 16M
expect "LUN 1 is mapped" acl_map "$lab_initiator" 1 small
expect "LUN 20 is mapped" acl_map "$lab_initiator" 20 large
expect "a LUN number is not mapped twice" fails acl_map "$lab_initiator" 20 small
expect "the initiator logs in" session_login

for wwn in "$small" "$large"; do
    disk=$(disk_of "$wwn")
    expect "one disk answers with $wwn" [ -b "/dev/$disk" ]
    same "its name scsi-3$wwn" "$(named "scsi-3$wwn")" "$disk"
    same "its name wwn-0x$wwn" "$(named "wwn-0x$wwn")" "$disk"
    page=$(page83 "/dev/$disk")
    same "the first designator is 16 bytes of NAA" "${page:8:8}" 01030010
    same "bytes 8 to 23 are the WWN" "${page:16:32}" "$wwn"
done
page=$(page83 "/dev/$(disk_of "$small")")
same "bytes 20 to 23 are LUN ID 7" "${page:40:8}" 00000007
page=$(page83 "/dev/$(disk_of "$large")")
same "bytes 20 to 23 are a LUN ID with its highest bit set" "${page:40:8}" 9a0000ff

disk=/dev/$(disk_of "$small")
head -c 1M /dev/urandom > /tmp/data
expect "the disk takes a write" dd if=/tmp/data of="$disk" bs=1M oflag=direct status=none
expect "a snapshot is made" snapshot_create small copy "$(serial_for 8 abc)"
expect "its data is the source's" cmp -n 1048576 /tmp/data "$target_stores/copy"

expect "the initiator logs out" session_logout
same "no disk is left" "$(named "wwn-0x$small")" ""
