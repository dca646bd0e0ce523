#!/bin/bash
# A LUN is detached without removing its device, and another one takes its number: the disk's names are stale. The
# scan renews the device and finds the new LUN's disk, and never takes the old one's for it: told by content.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
first=$(arraysim_lun first)
second=$(arraysim_lun second)
disk=$(disk_name "$(sdk attach-lun "$first" scan-lun "$first")")
expect "the first LUN is marked" fill "$disk" first
number=$(address "$disk")
sdk detach-lun "$first" # no removal before: the kernel keeps the dead disk
old_wwn=$(arraysim_wwn lun "$first")
same "the dead disk has its old name" "$(named "scsi-3$old_wwn")" "$disk"

expect "the second LUN is attached" sdk attach-lun "$second"
run_log_mark
found=$(scan_renewed "$second")
expect "the scan renewed the stale device" grep -q 'strShellCmd NO1' <(run_log)
expect "the second LUN is found: $found" [ -b "$found" ]
same "at the number of the first" "$(address "$(disk_name "$found")")" "$number"
same "with its own WWN" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$(arraysim_wwn lun "$second")"
expect "and not the first one's data" fails holds "$(disk_name "$found")" first
udevadm settle
same "udev's names are right again" "$(named "scsi-3$(arraysim_wwn lun "$second")")" "$(disk_name "$found")"
same "the first LUN is not found" "$(sdk scan-lun "$first")" ""
sdk remove-lun "$second" detach-lun "$second"
