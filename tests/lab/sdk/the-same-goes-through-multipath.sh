#!/bin/bash
# A LUN over two portals: two path devices and a dm node, found, written, removed.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
session_logout
expect "a second portal" portal_add 127.0.0.2:3260
expect "the host logs in to both" session_login
expect "multipathd" multipath_start
before=$(host_disks)
lun=$(arraysim_lun paths)
expect "the LUN is attached" sdk attach-lun "$lun"
found=$(sdk scan-lun "$lun")
wwn=$(arraysim_wwn lun "$lun")
expect "multipath has it" multipath_settle
node=$(multipath_node "$wwn")
expect "a second scan finds a device: $(sdk scan-lun "$lun")" [ -b "$found" ]
same "there are two paths" "$(disk_of "$wwn" | wc -l)" 2
expect "the dm node takes a write" fill "$node" "$lun"
expect "and every path shows it" holds "$(disk_of "$wwn" | head -n 1)" "$lun"

run_log_mark
multipath -f "3$wwn"
expect "removal" sdk remove-lun "$lun"
same "both paths are gone" "$(disk_of "$wwn")" ""
same "both went in the first pass" "$(run_log | grep -c 'delete disk cmd')" 2
expect "detach" sdk detach-lun "$lun"
same "the host's disks are as they were" "$(host_disks)" "$before"
expect "multipathd ends" multipath_stop
