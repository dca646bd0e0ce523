#!/bin/bash
# The disk of another array whose transport is down is not removed by a scan, with a rescan script that is sound, and
# works again when its array is back.
. "$(dirname "$0")/array.sh"

other_target=iqn.2020-01.test.lab:another
state() { cat "/sys/block/$away/device/state"; }
is() { [ "$(state)" = "$1" ]; }

expect "an array with real disks" arraysim_begin
target_create $other_target && portal_add 127.0.0.1:3270 && acl_create "$lab_initiator"
wwn=$(lun_create faraway "$(serial_for 77 ddd)" 16M)
acl_map "$lab_initiator" 1 faraway
expect "a session with another array" session_login
away=$(disk_of "$wwn")
expect "its disk is marked" fill "$away" faraway
tpg=$(target_dir)
echo 0 > "$tpg/enable"
expect "its transport goes down" wait_for 120 is transport-offline

target_use "$lab_target"
lun=$(arraysim_lun near)
run_log_mark
found=$(sdk attach-lun "$lun" scan-lun "$lun")
expect "a scan finds its disk: $found" [ -b "$found" ]
expect "the disk that is away is still there" [ -d "/sys/block/$away" ]
expect "the log names it" grep -q "ERROR.*$away is transport-offline" <(run_log)
expect "a removal does not touch it" sdk remove-lun "$lun" detach-lun "$lun"
expect "it is still there" [ -d "/sys/block/$away" ]

echo 1 > "$tpg/enable"
expect "it comes back with its array" wait_for 120 is running
expect "with its data" holds "$away" faraway
