#!/bin/bash
# Attach, scan, write and read, remove, detach: for a LUN, and for a snapshot of it.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
before=$(host_disks)
lun=$(arraysim_lun whole)
found=$(sdk attach-lun "$lun" scan-lun "$lun")
expect "the scan found a device: $found" [ -b "$found" ]
disk=$(disk_name "$found")
same "it answers with the LUN's WWN" "$(page83 "/dev/$disk" | cut -c 17-48)" "$(arraysim_wwn lun "$lun")"
expect "it takes a write" fill "$disk" "$lun"
expect "and holds it" holds "$disk" "$lun"

snapshot=$(arraysim_snapshot "$lun" copy)
copy=$(sdk attach-snapshot "$snapshot" scan-snapshot "$snapshot")
expect "the snapshot's device: $copy" [ -b "$copy" ]
expect "it is another one" [ "$copy" != "$found" ]
expect "it holds what the LUN held" holds "$(disk_name "$copy")" "$lun"

expect "the snapshot is removed and detached" sdk remove-snapshot "$snapshot" detach-snapshot "$snapshot"
expect "the LUN's device is still there" holds "$disk" "$lun"
expect "the LUN is removed and detached" sdk remove-lun "$lun" detach-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"
same "a scan finds nothing any more" "$(sdk scan-lun "$lun")" ""
